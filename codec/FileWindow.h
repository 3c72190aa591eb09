// A file seen through one small window, so that its size costs no memory.
#pragma once

#include "codec/ByteBuffer.h"
#include "codec/ByteSource.h"

#include <cstdint>
#include <vector>

namespace vantrel {

// Reads ahead and remembers what has been read. An operation fails as a whole when the offset is negative or
// the source fails.
class FileWindow {
public:
    // The source outlives the window; its size is asked for once.
    explicit FileWindow(ByteSource& source) : source_(source), fileSize_(source.Size()) {}

    std::uint64_t FileSize() const { return fileSize_; }

    // The count bytes, at least one, at a file offset; they stay where they are until the next View or
    // ReadRest. Null on failure.
    const std::uint8_t* View(std::int64_t offset, std::uint32_t count);
    // The same into a buffer, and without reading ahead: the window stays where it is.
    bool Read(std::int64_t offset, void* buffer, std::uint32_t count);
    // Reads every byte between two file offsets that has not been read yet.
    bool ReadRest(std::uint64_t begin, std::uint64_t end);

private:
    struct Range {
        std::uint64_t begin;
        std::uint64_t end;
    };

    std::uint64_t HeldFrom(std::uint64_t offset) const;
    bool MoveTo(std::uint64_t offset, std::uint32_t count);
    bool ReadSource(std::uint64_t offset, void* buffer, std::uint64_t count);
    bool ReadGap(std::uint64_t begin, std::uint64_t end);

    ByteSource& source_;
    std::uint64_t fileSize_;
    ByteBuffer bytes_;
    Range held_{}; // where in the file the leading bytes of the buffer come from
    std::vector<Range> read_;
};

} // namespace vantrel
