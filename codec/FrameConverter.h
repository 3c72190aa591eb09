// One frame's pixels to rows of 32-bit words 0x00RRGGBB.
#pragma once

#include "codec/DecodedImage.h"
#include "codec/FramePixels.h"
#include "codec/PixelConversion.h"

#include <cstddef>
#include <cstdint>

namespace vantrel {

// Takes the frame's mode from its own record. The pixels must outlive the converter.
class FrameConverter {
public:
    // With the palette that the decoded image assigns to the frame. Throws std::out_of_range if the frame or
    // that palette is missing.
    FrameConverter(const DecodedImage& image, std::size_t frameIndex, FramePixels& pixels);
    // With these words for the indices of the indexed mode.
    FrameConverter(const FrameRecord& frame, const PaletteWords& palette, FramePixels& pixels);

    // False for the reserved mode, which has no colours.
    bool CanConvert() const { return mode_ != PixelMode::Reserved; }
    std::uint16_t Width() const { return width_; }
    std::uint16_t Height() const { return height_; }

    // Writes all rows, the top one at `top` and each further one `stride` words after the one above it. False
    // when pixels can't be read. Throws std::out_of_range when there are fewer than the frame needs: a
    // frame's mode may differ from its file's.
    bool Convert(std::uint32_t* top, std::ptrdiff_t stride);
    // Writes only the next row, Width() words, starting with the top one; call it at most Height() times.
    // Otherwise like Convert.
    bool ConvertRow(std::uint32_t* words);

private:
    PixelMode mode_;
    std::uint16_t width_;
    std::uint16_t height_;
    FramePixels& pixels_;
    unsigned row_ = 0;
    const std::uint8_t* bytes_ = nullptr; // of the current row or page
    PaletteWords palette_;
};

} // namespace vantrel
