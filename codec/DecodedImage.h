// The in-memory form of a ZMI picture.
#pragma once

#include "codec/ByteBuffer.h"
#include "codec/ZmiFormat.h"

#include <cstddef>
#include <stdexcept>
#include <vector>

namespace vantrel {

// A deep-copyable value owned by its caller, who hands it empty to the decoder.
struct DecodedImage {
    ImageHeader header{};
    std::uint32_t tableWord = 0;
    std::uint16_t frameCount = 0;
    std::uint16_t tableExtra = 0;
    std::vector<FrameRecord> frames; // one per frame, in file order
    // The pixels of the leading frames that were asked for, same order: page order in mode 0, file order
    // otherwise.
    std::vector<ByteBuffer> framePixels;
    std::vector<Palette> palettes; // in the order loaded
};

// Bytes of a frame's pixels as they stand in a DecodedImage whose header names the mode.
constexpr std::uint64_t DecodedByteCount(PixelMode mode, std::uint16_t width, std::uint16_t height) {
    return mode == PixelMode::Monochrome ? (height + 7u) / 8u * std::uint64_t{width}
                                         : PixelByteCount(mode, width, height);
}

// A list's element. Throws std::out_of_range when the index is not in the list.
template <class List>
auto& ElementAt(List& list, std::size_t index) {
    if (index >= list.size())
        throw std::out_of_range("invalid vector<T> subscript");
    return list[index];
}

} // namespace vantrel
