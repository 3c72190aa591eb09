// The names of the pictures that a run writes into one folder.
#pragma once

#include "tools/terminal/FileName.h"

#include <filesystem>
#include <set>
#include <string>

namespace vantrel::tools {

class PictureNames {
public:
    // An empty folder is the current one.
    explicit PictureNames(std::filesystem::path folder, std::wstring extension = L".png")
        : folder_(std::move(folder)), extension_(std::move(extension)) {}

    // Reserves the name of another output of the run.
    void Reserve(const std::filesystem::path& file);

    // A path below the folder, with the folder's kind of slashes. A name that the run has already used, in
    // any case, gets a number.
    std::filesystem::path Take(const std::wstring& stem);

private:
    std::filesystem::path folder_;
    std::wstring extension_;
    std::set<std::wstring, NameOrder> taken_; // absolute
};

} // namespace vantrel::tools
