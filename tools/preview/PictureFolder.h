// The folder that the single PNG files of a run go to.
#pragma once

#include "tools/preview/Report.h"
#include "tools/terminal/OutputGuard.h"

#include <filesystem>
#include <set>
#include <string>

namespace vantrel::tools {

// No two pictures of a run share a name: NAME-256.png of another NAME becomes NAME-2-256.png.
class PictureFolder {
public:
    PictureFolder(std::filesystem::path folder, const OutputGuard& guard)
        : folder_(std::move(folder)), guard_(guard) {}

    // Keeps a file that this run writes itself from being taken for a picture.
    void Reserve(const std::filesystem::path& file);

    // Writes the file's pictures that have a suffix. One that can't be written becomes a failed result.
    void Write(FileReport& report);

private:
    struct IgnoreCase {
        bool operator()(const std::wstring& left, const std::wstring& right) const;
    };

    // The picture's file for a file that is called so.
    std::filesystem::path NameFor(const std::wstring& stem, const HandlerResult& result) const;

    std::filesystem::path folder_;
    const OutputGuard& guard_;
    std::set<std::wstring, IgnoreCase> taken_; // absolute
};

} // namespace vantrel::tools
