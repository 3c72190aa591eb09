// What every tool's main does: exit code, error message, and handling of Ctrl+C.
#pragma once

#include "tools/terminal/CommandLine.h"
#include "tools/terminal/JsonDocument.h"

#include <objbase.h>

#include <string_view>

namespace vantrel::tools {

struct Tool {
    std::wstring_view name;
    std::wstring_view help; // what --help prints, without a line feed at its end
    // Does the tool's work, in a COM apartment. False when something failed and was already reported. The
    // document is non-null if --json was given; RunTool closes it.
    bool (*run)(const Arguments& arguments, JsonDocument* json);
    bool takesJson = false;
    COINIT apartment = COINIT_MULTITHREADED;
};

// Handles --help and --version, else runs the tool. An escaping Failure becomes one line on stderr and, with
// --json, the document's "error". The exit code: 0 done, 1 something failed, stdout included, 2 wrong usage.
// Ctrl+C ends the process with 130 at any time and leaves no unfinished file behind.
int RunTool(const Tool& tool, int count, wchar_t** texts);

} // namespace vantrel::tools
