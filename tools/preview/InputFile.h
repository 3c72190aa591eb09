// The files that the user named, individually or by folder.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vantrel::tools {

struct InputFile {
    std::wstring shown;         // as the user wrote it
    std::filesystem::path path; // absolute, and in \\?\ form when it is long
};

// As found by FindFiles; in a folder the .zmi files. Throws Failure if there is none, and UsageError for an
// empty name; does not check whether a named file exists.
std::vector<InputFile> FindInputFiles(const std::wstring& argument);

} // namespace vantrel::tools
