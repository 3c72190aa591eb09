#include "render/PaintFrame.h"

#include "codec/FrameConverter.h"

namespace vantrel {

bool PaintFrame(const DecodedImage& image, std::size_t frameIndex, FramePixels& pixels,
                BitmapSurface& target) {
    FrameConverter converter(image, frameIndex, pixels);
    if (!converter.CanConvert())
        return false;
    const std::ptrdiff_t width = converter.Width();
    const std::ptrdiff_t height = converter.Height();
    if (!target.Create(converter.Width(), converter.Height(), BitmapKind::Dib))
        return false;
    if (width == 0 || height == 0)
        return true;
    // The surface is bottom-up.
    return target.Bits() && converter.Convert(target.Bits() + width * (height - 1), -width);
}

} // namespace vantrel
