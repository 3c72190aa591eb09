// The frame of every tool: its exit code, its last words, and what Ctrl+C does.
#pragma once

#include "tools/terminal/CommandLine.h"
#include "tools/terminal/JsonDocument.h"

#include <string_view>

namespace vantrel::tools {

struct Tool {
    std::wstring_view name;
    std::wstring_view help; // what --help prints, without a line feed at its end
    // Does the tool's work. False when something failed and was reported already. The document is there when
    // --json was given; it is closed by RunTool.
    bool (*run)(CommandLine& arguments, JsonDocument* json);
    bool takesJson = false;
};

// Answers --help and --version, else runs the tool. A Failure that leaves it becomes one line on stderr and,
// with --json, the document's "error". The exit code: 0 done, 1 something failed, stdout included, 2 wrong
// usage. Ctrl+C ends the process with 130 at any moment and leaves no unfinished file behind.
int RunTool(const Tool& tool, int count, wchar_t** arguments);

} // namespace vantrel::tools
