// All results for one file, and how they are printed: as lines for people, as JSON for programs.
#pragma once

#include "tools/preview/hosts/Hosts.h"
#include "tools/terminal/JsonObject.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::tools {

struct FileReport {
    InputFile file;
    std::vector<HandlerResult> results{};
    std::optional<std::wstring> fault{}; // what is wrong with the file itself
    std::wstring advice{};               // if it is sound, but a handler failed

    bool Ok() const;
    // Null if there is no such result, or it failed.
    const HandlerResult* Find(HandlerKind kind, std::wstring_view request) const;
    // One sentence for a file that failed: the fault, or else the first failed result.
    std::wstring Reason() const;
};

// One line per result on stdout, aligned after a name column of this width.
void PrintResults(const FileReport& report, std::size_t nameColumns);
JsonObject ToJson(const FileReport& report);

} // namespace vantrel::tools
