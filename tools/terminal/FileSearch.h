// The files that one argument stands for.
#pragma once

#include <filesystem>
#include <vector>

namespace vantrel::tools {

struct FileSearch {
    bool isFolder = false;
    bool isPattern = false;
    std::vector<std::filesystem::path> files; // as they could have been typed
};

// A folder gives all files directly in it, a name with * or ? those that match it (cmd leaves that to
// programs), both without hidden files and in natural order (2 before 10). Anything else gives itself,
// whether it exists or not. Throws Failure, and UsageError for an empty path.
FileSearch FindFiles(const std::filesystem::path& typed);

} // namespace vantrel::tools
