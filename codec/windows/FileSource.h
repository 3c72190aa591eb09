// A ZMI file's bytes from a path.
#pragma once

#include "codec/ByteSource.h"
#include "support/FileObject.h"

#include <optional>

namespace vantrel {

// Opens the file, shared for reading and writing, when asked for its size, and keeps it open until
// destruction.
class FileSource final : public ByteSource {
public:
    // The name must outlive the source.
    explicit FileSource(const wchar_t* name) : name_(name) {}

    // The low 32 bits only: a file of exactly 4 GiB counts as empty.
    std::uint64_t Size() override;
    bool ReadAt(std::int64_t offset, void* buffer, std::uint32_t count) override;

private:
    const wchar_t* name_;
    FileObject file_;
    std::optional<std::int64_t> position_; // where a read without a seek would start, if known
};

} // namespace vantrel
