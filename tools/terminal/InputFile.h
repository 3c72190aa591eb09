// The ZMI files that the user named, individually, by pattern or by folder.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vantrel::tools {

struct InputFile {
    std::wstring shown;         // as the user wrote it, or could have
    std::filesystem::path path; // absolute, and in \\?\ form when it is long
    std::wstring fault{};       // why an argument stands for no file; empty for a file, which may not exist
};

// As found by FindFiles; in a folder the .zmi files. Throws UsageError for an empty name.
std::vector<InputFile> FindInputFiles(const std::vector<std::wstring>& arguments);

} // namespace vantrel::tools
