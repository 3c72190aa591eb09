// The files that the user named, one by one or as the content of a folder.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vantrel::tools {

struct InputFile {
    std::wstring shown;         // as the user wrote it
    std::filesystem::path path; // absolute, and in \\?\ form when it is long
};

// What an argument stands for: a folder for the .zmi files right in it, in the order in which Explorer lists
// them. Throws Failure for a folder that can't be read or holds none, and UsageError for an empty name;
// whether a file exists shows when it is asked for.
std::vector<InputFile> FindInputFiles(const std::wstring& argument);

} // namespace vantrel::tools
