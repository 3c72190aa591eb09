// The in-memory form of a ZMI picture.
#pragma once

#include "codec/ByteBuffer.h"
#include "codec/ZmiFormat.h"

#include <cstddef>
#include <stdexcept>
#include <vector>

namespace vantrel {

// A deep-copyable value owned by the caller, who passes it to the decoder empty.
struct DecodedImage {
    ImageHeader header{};
    std::uint32_t tableWord = 0;
    std::uint16_t frameCount = 0;
    std::uint16_t tableExtra = 0;
    std::vector<FrameRecord> frames; // one per frame, in file order
    // Empty, or one buffer per frame, in the same order: page order in mode 0, file order otherwise.
    std::vector<ByteBuffer> framePixels;
    std::vector<Palette> palettes; // in the order loaded
};

// Bytes of one row of a decoded frame (in mode 0 of a page of eight rows, see toPageOrder), and of all its
// pixels.
constexpr std::uint32_t DecodedRowBytes(PixelMode mode, std::uint16_t width) {
    return mode == PixelMode::Monochrome ? width : RowBytes(mode, width);
}
constexpr std::uint64_t DecodedByteCount(PixelMode mode, std::uint16_t width, std::uint16_t height) {
    const unsigned rows = mode == PixelMode::Monochrome ? (height + 7u) / 8u : height;
    return std::uint64_t{rows} * DecodedRowBytes(mode, width);
}

[[noreturn]] inline void ThrowOutOfRange() {
    throw std::out_of_range("invalid vector<T> subscript");
}

// An element of a list. Throws std::out_of_range for an invalid index.
template <class List>
auto& ElementAt(List& list, std::size_t index) {
    if (index >= list.size())
        ThrowOutOfRange();
    return list[index];
}

} // namespace vantrel
