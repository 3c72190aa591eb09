// Bounds-checked access to a file's payload, which never stands in memory as a whole.
#pragma once

#include "codec/ByteBuffer.h"
#include "codec/ByteSource.h"

#include <cstdint>
#include <vector>

namespace vantrel {

// Reads the ranges that the decoder wants straight into their own buffers and, at the end, everything that
// nobody wanted through a small window, so that a byte that cannot be read still fails the load.
class PayloadReader {
public:
    // The payload is the dataSize bytes at file offset dataOffset; the source outlives the reader.
    PayloadReader(ByteSource& source, std::uint32_t dataOffset, std::uint32_t dataSize);

    // Where a file offset lies in the payload: the 32-bit difference to dataOffset, unsigned for tables,
    // signed for pixel data. May point outside; Contains tells.
    std::int64_t TablePosition(std::uint32_t fileOffset) const;
    std::int64_t PixelPosition(std::uint32_t fileOffset) const;

    bool Contains(std::int64_t position, std::uint64_t count) const;

    // False when the range is not wholly in the payload or the source fails.
    bool Read(std::int64_t position, void* buffer, std::uint64_t count);

    // Reads every byte that no Read has covered. False when the source fails.
    bool ReadRest();

private:
    struct Range {
        std::uint32_t begin;
        std::uint32_t end;
    };

    bool ReadGap(std::uint32_t begin, std::uint32_t end);

    ByteSource& source_;
    std::uint32_t dataOffset_;
    std::uint32_t dataSize_;
    std::vector<Range> covered_;
    ByteBuffer window_;
};

} // namespace vantrel
