#include "render/RenderImage.h"

#include "codec/windows/Load.h"
#include "render/PaintFrame.h"
#include "support/BitmapSurface.h"

#include <cstring>
#include <limits>

namespace vantrel {

namespace {

constexpr COLORREF keyColor = RGB(255, 255, 0);

// A picture scaled into a box, keeping its proportions, and its position when centred there.
struct Fit {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t left;
    std::uint32_t top;
};

// Truncates; values outside the 32-bit range saturate, and 0 / 0 becomes 0.
std::uint32_t Truncate(double value) {
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    return value >= most ? std::numeric_limits<std::int32_t>::max()
           : value > 0   ? static_cast<std::uint32_t>(value)
                         : 0;
}

Fit FitInto(std::uint32_t boxWidth, std::uint32_t boxHeight, const BitmapSurface& source) {
    const double sourceWidth = source.Width();
    const double sourceHeight = source.Height();
    const double scaleX = boxWidth / sourceWidth;
    const double scaleY = boxHeight / sourceHeight;
    const double scale = scaleY > scaleX ? scaleX : scaleY;
    const std::uint32_t width = Truncate(scale * sourceWidth);
    const std::uint32_t height = Truncate(scale * sourceHeight);
    return {width, height, (boxWidth - width) >> 1, (boxHeight - height) >> 1};
}

void StretchInto(BitmapSurface& target, const BitmapSurface& source, int left, int top, const Fit& fit) {
    target.StretchFrom(source.Dc(), left, top, static_cast<int>(fit.width), static_cast<int>(fit.height), 0,
                       0, source.Width(), source.Height());
}

bool MakeIcon(const BitmapSurface& source, std::uint32_t edge, HICON& icon) {
    BitmapSurface mask;
    BitmapSurface color;
    if (!mask.Create(edge, edge, BitmapKind::Dib) || !color.Create(edge, edge, BitmapKind::Dib))
        return false;
    const Fit fit = FitInto(edge, edge, source);
    mask.Fill(RGB(0, 0, 0), 0, 0, 0, 0);
    color.Fill(keyColor, 0, 0, 0, 0);
    StretchInto(color, source, static_cast<int>(fit.left), static_cast<int>(fit.top), fit);
    color.SetAlphaOutside(keyColor, fit.left, fit.top, fit.width, fit.height);

    // The system copies both bitmaps, which must not be selected into a context.
    const UniqueBitmap maskBitmap = mask.Detach();
    const UniqueBitmap colorBitmap = color.Detach();
    // Without a colour bitmap the system would treat the mask as a monochrome icon.
    if (!maskBitmap || !colorBitmap)
        return false;
    ICONINFO info{};
    info.fIcon = TRUE;
    info.hbmMask = maskBitmap.get();
    info.hbmColor = colorBitmap.get();
    const HICON created = CreateIconIndirect(&info);
    if (!created)
        return false;
    icon = created;
    return true;
}

bool MakeBitmap(const BitmapSurface& source, const RenderImageArguments& arguments) {
    const Fit fit = FitInto(arguments.width, arguments.height, source);
    BitmapSurface color;
    if (arguments.fitMode == FitMode::Fitted) {
        if (!color.Create(fit.width, fit.height, BitmapKind::Dib))
            return false;
        StretchInto(color, source, 0, 0, fit);
        color.SetAlphaOutside(keyColor, 0, 0, fit.width, fit.height);
    } else {
        if (!color.Create(arguments.width, arguments.height, BitmapKind::Dib))
            return false;
        color.Fill(keyColor, 0, 0, 0, 0);
        StretchInto(color, source, static_cast<int>(fit.left), static_cast<int>(fit.top), fit);
    }
    UniqueBitmap bitmap = color.Detach();
    if (!bitmap)
        return false;
    *arguments.bitmap = bitmap.release();
    return true;
}

// For the reserved mode its number is reported; it is not a depth.
std::uint32_t BitsPerPixel(PixelMode mode) {
    switch (mode) {
    case PixelMode::Monochrome:
        return 1;
    case PixelMode::Indexed:
        return 8;
    case PixelMode::Rgb565:
        return 16;
    default:
        return 3;
    }
}

void StoreFacts(const DecodedImage& image, const RenderImageArguments& arguments) {
    if (arguments.dimensions) {
        const FrameRecord& frame = ElementAt(image.frames, 0);
        arguments.dimensions[0] = frame.width;
        arguments.dimensions[1] = frame.height;
    }
    if (arguments.text) {
        // The title need not be terminated inside its field.
        char title[sizeof image.header.text + 1] = {};
        std::memcpy(title, image.header.text, sizeof image.header.text);
        arguments.text->AssignNarrow(title);
    }
    if (arguments.bitsPerPixel)
        *arguments.bitsPerPixel = BitsPerPixel(ModeOf(image.header.flags));
}

} // namespace

bool RenderImage(const RenderImageArguments& arguments) {
    const bool factsOnly = !arguments.largeIcon && !arguments.smallIcon && !arguments.bitmap;
    DecodedImage image;
    BitmapSurface source;
    PixelTaker paint;
    if (!factsOnly)
        paint = [&](const DecodedImage& decoded, FramePixels& pixels) {
            return PaintFrame(decoded, 0, pixels, source);
        };
    if (!load(arguments.path, arguments.stream, image, paint))
        return false;
    StoreFacts(image, arguments);
    return (!arguments.largeIcon || MakeIcon(source, arguments.largeSize, *arguments.largeIcon)) &&
           (!arguments.smallIcon || MakeIcon(source, arguments.smallSize, *arguments.smallIcon)) &&
           (!arguments.bitmap || MakeBitmap(source, arguments));
}

} // namespace vantrel
