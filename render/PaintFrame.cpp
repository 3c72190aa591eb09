#include "render/PaintFrame.h"

#include "codec/PixelConversion.h"

namespace vantrel {

namespace {

// The palette that a frame names; number 0 names the first one for a frame that needs any.
const Palette* FindPalette(const DecodedImage& image, std::uint32_t number, PixelMode mode) {
    if (number == 0 && mode != PixelMode::Indexed)
        return nullptr;
    return &ElementAt(image.palettes, number == 0 ? 0 : number - 1);
}

} // namespace

bool PaintFrame(const DecodedImage& image, std::size_t frameIndex, FramePixels& pixels,
                BitmapSurface& target) {
    const FrameRecord& frame = ElementAt(image.frames, frameIndex);
    const PixelMode mode = ModeOf(frame.flags);
    if (mode == PixelMode::Reserved)
        return false;
    const Palette* const palette = FindPalette(image, frame.paletteNumber, mode);

    const std::uint32_t width = frame.width;
    const std::uint32_t height = frame.height;
    if (!target.Create(width, height, BitmapKind::Dib))
        return false;
    if (width == 0 || height == 0)
        return true;
    if (!target.Bits())
        return false;
    // A frame may be of another mode than the file, and then need more bytes than it was given.
    if (pixels.Size() < DecodedByteCount(mode, frame.width, frame.height))
        throw std::out_of_range("invalid string position");

    std::uint32_t words[256];
    if (mode == PixelMode::Indexed)
        ExpandPalette(*palette, words);
    const std::uint8_t* bytes = nullptr;
    // The surface is bottom-up.
    std::uint32_t* row = target.Bits() + std::size_t{width} * height;
    for (std::uint32_t y = 0; y < height; ++y) {
        row -= width;
        if (mode != PixelMode::Monochrome || y % 8 == 0)
            bytes = pixels.Next(mode == PixelMode::Rgb565 ? width * 2 : width);
        if (!bytes)
            return false;
        switch (mode) {
        case PixelMode::Monochrome:
            ConvertMonochromeRow(bytes, y % 8, row, width);
            break;
        case PixelMode::Indexed:
            ConvertIndexedRow(bytes, words, row, width);
            break;
        default:
            ConvertRgb565Row(bytes, row, width);
        }
    }
    return true;
}

} // namespace vantrel
