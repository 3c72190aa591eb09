// The files that the user named, individually, by pattern or by folder.
#pragma once

#include "tools/terminal/CommandLine.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace vantrel::tools {

struct InputFile {
    std::wstring shown;         // as the user wrote it, or could have
    std::filesystem::path path; // absolute, and in \\?\ form when it is long
    std::wstring fault{};       // why an argument stands for no file; empty for a file, which may not exist
};

// The files of a folder that a tool reads.
struct FolderFilter {
    const wchar_t* name;
    std::function<bool(const std::filesystem::path& file)> takes;
};
extern const FolderFilter zmiFiles;

// A folder gives those files directly in it that the filter takes, a name with * or ? those that match it
// (cmd leaves that to programs), both without hidden files and in natural order (2 before 10). Anything else
// gives itself, whether it exists or not. Throws UsageError for an empty name.
std::vector<InputFile> FindInputFiles(const Arguments& typed, const FolderFilter& filter = zmiFiles);

} // namespace vantrel::tools
