// One frame's pixels as they pass through their file's window, in the order in which a DecodedImage holds
// them.
#pragma once

#include "codec/ByteBuffer.h"
#include "codec/PayloadReader.h"
#include "codec/ZmiFormat.h"

namespace vantrel {

class FramePixels {
public:
    // In the header's mode, as many as the record's size says; of a file without a picture they are all 0.
    // The payload outlives this.
    FramePixels(PayloadReader& payload, const ImageHeader& header, const FrameRecord& frame);

    // Bytes in all.
    std::uint64_t Size() const;
    // The next count bytes, which stay until the next call; null when they can't be read. No more than Size()
    // may be asked for in all, and pages (see toPageOrder) only one by one.
    const std::uint8_t* Next(std::uint32_t count);

private:
    const std::uint8_t* NextPage();

    PayloadReader& payload_;
    PixelMode mode_;
    std::uint16_t width_;
    std::uint16_t height_;
    bool isBlank_;
    std::int64_t position_;
    unsigned row_ = 0;
    ByteBuffer page_;
};

} // namespace vantrel
