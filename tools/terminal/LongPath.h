// Paths longer than Windows' old limit of 260 characters. A manifest lifts it only where the system's
// administrator has allowed that.
#pragma once

#include <filesystem>

namespace vantrel::tools {

// The absolute path, in \\?\ form if it is too long for the plain one. Pass this to every Windows function
// that opens, creates or renames a file; show the user the path as typed. Throws UsageError for an empty
// path, and Failure.
std::filesystem::path LongPath(const std::filesystem::path& path);

} // namespace vantrel::tools
