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

// As FindFiles finds them, of a folder the .zmi files. Throws Failure when there is none, and UsageError for
// an empty name; whether a file that was named exists shows when it is asked for.
std::vector<InputFile> FindInputFiles(const std::wstring& argument);

} // namespace vantrel::tools
