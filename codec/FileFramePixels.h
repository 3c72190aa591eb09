// A frame's pixels as they pass through their file's window: they take no memory of their own.
#pragma once

#include "codec/ByteBuffer.h"
#include "codec/FramePixels.h"
#include "codec/PayloadReader.h"
#include "codec/ZmiFormat.h"

namespace vantrel {

class FileFramePixels final : public FramePixels {
public:
    // In the header's mode, as many as the record's size says. The payload outlives this. Without a picture
    // in the file they are all 0.
    FileFramePixels(PayloadReader& payload, const ImageHeader& header, const FrameRecord& frame);

    std::uint64_t Size() const override;
    const std::uint8_t* Next(std::uint32_t count) override;

private:
    const std::uint8_t* View(std::uint32_t count);
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
