// A file that appears under its name only when it is complete.
#pragma once

#include <cstddef>
#include <filesystem>
#include <span>

namespace vantrel::tools {

// Names a temporary file beside the target; Commit renames it over the target. Without a Commit, and when the
// user presses Ctrl+C, the temporary file is deleted and the target stays as it was. Fill it either through
// Write or by opening TemporaryPath, not both.
class OutputFile {
public:
    // Creates missing parent folders. Throws std::filesystem::filesystem_error.
    explicit OutputFile(const std::filesystem::path& target);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::filesystem::path& TemporaryPath() const { return temporary_; }

    // Appends bytes to the temporary file. Throws std::filesystem::filesystem_error.
    void Write(std::span<const std::byte> bytes);

    // Close the temporary file first, if you opened it. Throws std::filesystem::filesystem_error.
    void Commit();

private:
    void Close();

    std::filesystem::path target_;
    std::filesystem::path temporary_;
    void* handle_; // a HANDLE; INVALID_HANDLE_VALUE while Write was not called
    bool committed_ = false;
};

} // namespace vantrel::tools
