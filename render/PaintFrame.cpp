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

// Bytes of a frame's pixels as they stand in a DecodedImage.
std::uint64_t DecodedByteCount(PixelMode mode, std::uint16_t width, std::uint16_t height) {
    return mode == PixelMode::Monochrome ? (height + 7u) / 8u * std::uint64_t{width}
                                         : PixelByteCount(mode, width, height);
}

} // namespace

bool PaintFrame(const DecodedImage& image, std::size_t frameIndex, BitmapSurface& target) {
    const FrameRecord& frame = ElementAt(image.frames, frameIndex);
    const PixelMode mode = ModeOf(frame.flags);
    if (mode == PixelMode::Reserved)
        return false;
    const Palette* const palette = FindPalette(image, frame.paletteNumber, mode);
    const ByteBuffer& pixels = ElementAt(image.framePixels, frameIndex);

    const std::size_t width = frame.width;
    const std::size_t height = frame.height;
    if (!target.Create(frame.width, frame.height, BitmapKind::Dib))
        return false;
    if (width == 0 || height == 0)
        return true;
    if (!target.Bits())
        return false;
    // A frame may be of another mode than the file, and then need more bytes than it was given.
    if (pixels.size() < DecodedByteCount(mode, frame.width, frame.height))
        throw std::out_of_range("invalid string position");

    std::uint32_t words[256];
    if (mode == PixelMode::Indexed)
        ExpandPalette(*palette, words);
    // In memory order: the surface is bottom-up.
    std::uint32_t* row = target.Bits();
    for (std::size_t y = height; y-- > 0; row += width) {
        switch (mode) {
        case PixelMode::Monochrome:
            ConvertMonochromeRow(pixels.data() + y / 8 * width, y % 8, row, width);
            break;
        case PixelMode::Indexed:
            ConvertIndexedRow(pixels.data() + y * width, words, row, width);
            break;
        default:
            ConvertRgb565Row(pixels.data() + y * width * 2, row, width);
        }
    }
    return true;
}

} // namespace vantrel
