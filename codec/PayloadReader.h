// Bounds-checked access to a file's payload, which is never held in memory as a whole.
#pragma once

#include "codec/ByteBuffer.h"
#include "codec/ByteSource.h"
#include "codec/ZmiFormat.h"

#include <cstdint>
#include <vector>

namespace vantrel {

// Provides the ranges that the decoder wants, through one small window that reads ahead, and at the end reads
// everything that nobody wanted, so that an unreadable byte anywhere fails the load. Nothing but payload and
// trailer is read. Positions count from the payload's first byte. Every operation fails when a range is not
// entirely in the payload or cannot be read.
class PayloadReader {
public:
    static constexpr std::uint32_t standardWindow = 64 * 1024;

    // The payload is the dataSize bytes at file offset dataOffset; the source must outlive the reader. The
    // window grows only when more bytes are viewed at once.
    PayloadReader(ByteSource& source, std::uint32_t dataOffset, std::uint32_t dataSize,
                  std::uint32_t windowSize = standardWindow);
    // Of the same payload, with a window of its own.
    PayloadReader(const PayloadReader& other, std::uint32_t windowSize)
        : PayloadReader(other.source_, other.dataOffset_, other.dataSize_, windowSize) {}

    // Where a file offset lies in the payload: the 32-bit difference to dataOffset, unsigned for tables,
    // signed for pixel data. May point outside; see Contains.
    std::int64_t TablePosition(std::uint32_t fileOffset) const { return fileOffset - dataOffset_; }
    std::int64_t PixelPosition(std::uint32_t fileOffset) const {
        return static_cast<std::int32_t>(fileOffset - dataOffset_);
    }

    bool Contains(std::int64_t position, std::uint64_t count) const {
        return position >= 0 && position <= dataSize_ &&
               count <= dataSize_ - static_cast<std::uint64_t>(position);
    }

    // Copies bytes, without reading ahead: the window stays where it is.
    bool Read(std::int64_t position, void* buffer, std::uint64_t count);
    // The bytes (at least one) in the window, valid until the next View; null on failure.
    const std::uint8_t* View(std::int64_t position, std::uint64_t count);
    // Reads every byte that has not been read yet.
    bool ReadRest();

    // The four bytes where the trailer should be.
    bool ReadTrailer(char (&trailer)[sizeof zmiTrailer]);

private:
    struct Range {
        std::uint64_t begin;
        std::uint64_t end;
    };

    std::uint64_t HeldFrom(std::uint64_t position) const;
    bool MoveTo(std::uint64_t position, std::uint64_t count);
    bool Copy(std::uint64_t position, void* buffer, std::uint64_t count);
    bool ReadSource(std::uint64_t position, void* buffer, std::uint64_t count);
    bool ReadGap(std::uint64_t begin, std::uint64_t end);

    ByteSource& source_;
    std::uint32_t dataOffset_;
    std::uint32_t dataSize_;
    std::uint32_t windowSize_;
    std::int32_t trailerOffset_;
    ByteBuffer bytes_;
    Range held_{}; // the payload range at the start of the buffer
    std::vector<Range> read_;
};

} // namespace vantrel
