// One way to name files whose paths are longer than Windows' old limit of 260 characters.
#pragma once

#include <filesystem>

namespace vantrel::tools {

// The absolute path, in \\?\ form when it is too long for the plain one. Hand this to every Windows function
// that opens, creates or renames a file; show the user the path that was typed. Throws
// UsageError for an empty path, and Failure.
std::filesystem::path LongPath(const std::filesystem::path& path);

} // namespace vantrel::tools
