// One frame's pixels, piece by piece, in the order in which a DecodedImage holds them.
#pragma once

#include <cstdint>

namespace vantrel {

class FramePixels {
public:
    // Bytes in all.
    virtual std::uint64_t Size() const = 0;
    // The next count bytes, which stay until the next call; null when they can't be read. No more than Size()
    // may be asked for in all, and pages (see toPageOrder) only one by one.
    virtual const std::uint8_t* Next(std::uint32_t count) = 0;

protected:
    ~FramePixels() = default;
};

} // namespace vantrel
