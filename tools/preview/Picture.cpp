#include "tools/preview/Picture.h"

#include "tools/picture/PngWriter.h"
#include "tools/terminal/Failure.h"

#include <algorithm>
#include <utility>

namespace vantrel::tools {

Picture TakePicture(UniqueBitmap bitmap) {
    // The library's drawing calls may still be in GDI's batch.
    GdiFlush();
    BITMAP facts{};
    if (GetObjectW(bitmap.get(), sizeof(facts), &facts) == 0 || facts.bmWidth <= 0 || facts.bmHeight == 0)
        throw Failure(L"the bitmap handle is not a bitmap", E_HANDLE);
    Picture picture;
    picture.width = static_cast<unsigned>(facts.bmWidth);
    picture.height = static_cast<unsigned>(std::abs(facts.bmHeight));
    picture.pixels.resize(std::size_t{picture.width} * picture.height);

    // GetDIBits flips bottom-up rows and keeps the fourth byte of 32-bit pixels.
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = facts.bmWidth;
    info.bmiHeader.biHeight = -static_cast<LONG>(picture.height);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    const UniqueScreenDc screen(GetDC(nullptr));
    const int rows = GetDIBits(screen.get(), bitmap.get(), 0, picture.height, picture.pixels.data(), &info,
                               DIB_RGB_COLORS);
    if (rows != static_cast<int>(picture.height))
        throw Failure(L"the bitmap's pixels cannot be read");
    return picture;
}

Picture TakePicture(UniqueIcon icon) {
    ICONINFO info{};
    if (!GetIconInfo(icon.get(), &info))
        FailWithLastError(L"GetIconInfo");
    UniqueBitmap mask(info.hbmMask);
    UniqueBitmap colors(info.hbmColor);
    if (!colors)
        throw Failure(L"the icon has no colours");
    Picture picture = TakePicture(std::move(colors));
    picture.isOpaque = false;

    constexpr std::uint32_t alpha = 0xFF000000;
    if (mask && std::ranges::none_of(picture.pixels, [](auto pixel) { return (pixel & alpha) != 0; })) {
        const Picture hidden = TakePicture(std::move(mask));
        for (std::size_t i = 0; i < std::min(picture.pixels.size(), hidden.pixels.size()); ++i)
            if ((hidden.pixels[i] & ~alpha) == 0)
                picture.pixels[i] |= alpha;
    }
    return picture;
}

void WritePng(const std::filesystem::path& file, const OutputGuard& guard, NameOrigin origin, unsigned width,
              unsigned height, bool isOpaque, const std::uint32_t* pixels) {
    OutputFile output(file, FileKind::Png, guard, origin);
    PngWriter writer(output, width, height, isOpaque);
    for (unsigned y = 0; y < height; ++y)
        writer.WriteRow(pixels + std::size_t{y} * width);
    writer.Finish();
    output.Commit();
}

} // namespace vantrel::tools
