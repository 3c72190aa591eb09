// One frame's pixels to rows of 32-bit words 0x00RRGGBB.
#pragma once

#include "codec/DecodedImage.h"
#include "codec/FramePixels.h"

#include <cstddef>
#include <cstdint>

namespace vantrel {

// Takes the frame's mode from its own record. The pixels outlive the converter.
class FrameConverter {
public:
    // By the palette that the decoded image gives to the frame. Throws std::out_of_range when the frame or
    // that palette is not there.
    FrameConverter(const DecodedImage& image, std::size_t frameIndex, FramePixels& pixels);
    // By this palette, which may be null but in the indexed mode.
    FrameConverter(const FrameRecord& frame, const Palette* palette, FramePixels& pixels);

    // False for the reserved mode, which has no colours.
    bool CanConvert() const { return mode_ != PixelMode::Reserved; }
    std::uint16_t Width() const { return width_; }
    std::uint16_t Height() const { return height_; }

    // Writes all rows, the top one at `top` and each further one `stride` words behind the one above it.
    // False when pixels can't be read. Throws std::out_of_range when there are fewer than the frame needs: a
    // frame may be of another mode than its file.
    bool Convert(std::uint32_t* top, std::ptrdiff_t stride);
    // Writes the next row alone, the top one first; there are no more than Height(). Otherwise as Convert.
    bool ConvertRow(std::uint32_t* words);

private:
    PixelMode mode_;
    std::uint16_t width_;
    std::uint16_t height_;
    FramePixels& pixels_;
    unsigned row_ = 0;
    const std::uint8_t* bytes_ = nullptr; // of the present row or page
    std::uint32_t palette_[256];
};

} // namespace vantrel
