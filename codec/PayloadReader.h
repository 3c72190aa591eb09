// Bounds-checked access to a file's payload, which never stands in memory as a whole.
#pragma once

#include "codec/FileWindow.h"

#include <cstdint>

namespace vantrel {

// Gives out the ranges that the decoder wants and, at the end, reads everything that nobody wanted, so that a
// byte that cannot be read still fails the load. Every operation fails when a range is not wholly in the
// payload or cannot be read.
class PayloadReader {
public:
    // The payload is the dataSize bytes at file offset dataOffset; the window outlives the reader.
    PayloadReader(FileWindow& file, std::uint32_t dataOffset, std::uint32_t dataSize)
        : file_(file), dataOffset_(dataOffset), dataSize_(dataSize) {}

    // Where a file offset lies in the payload: the 32-bit difference to dataOffset, unsigned for tables,
    // signed for pixel data. May point outside; Contains tells.
    std::int64_t TablePosition(std::uint32_t fileOffset) const;
    std::int64_t PixelPosition(std::uint32_t fileOffset) const;

    bool Contains(std::int64_t position, std::uint64_t count) const;

    bool Read(std::int64_t position, void* buffer, std::uint64_t count);
    // The bytes in the file's window, where they stay until the next View; null on failure.
    const std::uint8_t* View(std::int64_t position, std::uint64_t count);
    // Reads every byte that has not been read yet.
    bool ReadRest();

private:
    FileWindow& file_;
    std::uint32_t dataOffset_;
    std::uint32_t dataSize_;
};

} // namespace vantrel
