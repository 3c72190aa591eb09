// A file that appears under its name only when it is complete.
#pragma once

#include "support/Handles.h"
#include "tools/terminal/OutputGuard.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

namespace vantrel::tools {

// Fills a temporary file next to the target; Commit renames it over the target. Without Commit, or on Ctrl+C,
// the temporary file is deleted and the target stays as it was.
class OutputFile {
public:
    // Creates missing parent folders. Throws what OutputGuard::Check throws, and Failure.
    OutputFile(const std::filesystem::path& target, FileKind kind, const OutputGuard& guard,
               NameOrigin origin = NameOrigin::Typed);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Writes bytes at the current position. Throws Failure.
    void Write(std::span<const std::byte> bytes);
    // Moves the position, counted from FILE_BEGIN, FILE_CURRENT or FILE_END, and returns it. Throws Failure.
    std::uint64_t Seek(std::int64_t distance, DWORD origin);
    // Throws Failure, also if the guard doesn't let these bytes replace an existing file.
    void Commit();

    // Deletes every uncommitted file and prevents further commits: the process is about to end.
    static void DiscardAll();

private:
    void CreateFolders(const std::filesystem::path& folder) const;

    std::filesystem::path shown_; // as the user typed it
    std::filesystem::path target_;
    std::filesystem::path temporary_;
    bool mayReplace_;
    UniqueKernelHandle handle_;
    bool committed_ = false;
};

} // namespace vantrel::tools
