#include "codec/FrameConverter.h"

#include "codec/PixelConversion.h"

namespace vantrel {

namespace {

// Number 0 names the first palette for a frame that needs any.
const Palette* PaletteOf(const DecodedImage& image, const FrameRecord& frame) {
    const PixelMode mode = ModeOf(frame.flags);
    const std::uint32_t number = frame.paletteNumber;
    if (mode == PixelMode::Reserved || (number == 0 && mode != PixelMode::Indexed))
        return nullptr;
    return &ElementAt(image.palettes, number == 0 ? 0 : number - 1);
}

} // namespace

FrameConverter::FrameConverter(const DecodedImage& image, std::size_t frameIndex, FramePixels& pixels)
    : FrameConverter(ElementAt(image.frames, frameIndex),
                     PaletteOf(image, ElementAt(image.frames, frameIndex)), pixels) {}

FrameConverter::FrameConverter(const FrameRecord& frame, const Palette* palette, FramePixels& pixels)
    : mode_(ModeOf(frame.flags)), width_(frame.width), height_(frame.height), pixels_(pixels) {
    if (mode_ == PixelMode::Indexed)
        ExpandPalette(*palette, palette_);
}

bool FrameConverter::Convert(std::uint32_t* top, std::ptrdiff_t stride) {
    for (unsigned y = 0; y < height_; ++y) {
        if (!ConvertRow(top + static_cast<std::ptrdiff_t>(y) * stride))
            return false;
    }
    return true;
}

bool FrameConverter::ConvertRow(std::uint32_t* words) {
    const unsigned y = row_++;
    if (y == 0 && pixels_.Size() < DecodedByteCount(mode_, width_, height_))
        ThrowOutOfRange();
    if (mode_ != PixelMode::Monochrome || y % 8 == 0)
        bytes_ = pixels_.Next(DecodedRowBytes(mode_, width_));
    if (!bytes_)
        return false;
    switch (mode_) {
    case PixelMode::Monochrome:
        ConvertMonochromeRow(bytes_, y % 8, words, width_);
        break;
    case PixelMode::Indexed:
        ConvertIndexedRow(bytes_, palette_, words, width_);
        break;
    case PixelMode::Rgb565:
        ConvertRgb565Row(bytes_, words, width_);
        break;
    default:
        return false;
    }
    return true;
}

} // namespace vantrel
