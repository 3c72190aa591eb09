// The files that a user means by one argument.
#pragma once

#include <filesystem>
#include <vector>

namespace vantrel::tools {

struct FileSearch {
    bool isFolder = false;
    bool isPattern = false;
    std::vector<std::filesystem::path> files; // as they would have been typed
};

// A folder gives all files right in it, a name with * or ? those that it matches (cmd leaves that to its
// programs), both without hidden ones and in the order in which people count. All else gives itself, be it
// there or not. Throws Failure, and UsageError for an empty path.
FileSearch FindFiles(const std::filesystem::path& typed);

} // namespace vantrel::tools
