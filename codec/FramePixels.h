// One frame's pixels as they pass through the file's window, in the order in which a DecodedImage holds them.
#pragma once

#include "codec/ByteBuffer.h"
#include "codec/PayloadReader.h"
#include "codec/ZmiFormat.h"

namespace vantrel {

class FramePixels {
public:
    // In the header's mode, as many as the record's size requires; all 0 for a file without a picture. The
    // payload must outlive this.
    FramePixels(PayloadReader& payload, const ImageHeader& header, const FrameRecord& frame);

    // Total bytes.
    std::uint64_t Size() const;
    // The next count bytes, valid until the next call; null when they can't be read. At most Size() bytes may
    // be requested in total, and pages (see toPageOrder) only one at a time.
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
