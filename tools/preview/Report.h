// All answers about one file, and how they are told: as lines for people, as JSON for programs.
#pragma once

#include "tools/preview/HandlerHost.h"
#include "tools/terminal/JsonDocument.h"

#include <optional>
#include <string>
#include <vector>

namespace vantrel::tools {

struct FileReport {
    InputFile file;
    std::vector<HandlerResult> results;
    std::optional<std::wstring> fault; // what is wrong with the file itself

    bool Ok() const;
    // Null when there is no such answer, or it failed.
    const HandlerResult* Find(HandlerKind kind, std::wstring_view request) const;
    // One sentence for a file that failed: the fault, or else the first failed answer.
    std::wstring Reason() const;
};

// One aligned line per result on stdout, and one per failed file on stderr.
void PrintReports(const std::vector<FileReport>& reports);
void PrintJson(const std::vector<FileReport>& reports, JsonDocument& document);

} // namespace vantrel::tools
