#include "tools/preview/Picture.h"

#include "tools/terminal/Failure.h"

#include <algorithm>
#include <memory>
#include <type_traits>

namespace vantrel::tools {

namespace {

struct BitmapDeleter {
    void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
};
using BitmapHandle = std::unique_ptr<std::remove_pointer_t<HBITMAP>, BitmapDeleter>;

struct IconDeleter {
    void operator()(HICON icon) const { DestroyIcon(icon); }
};
using IconHandle = std::unique_ptr<std::remove_pointer_t<HICON>, IconDeleter>;

} // namespace

Picture TakePicture(HBITMAP handle) {
    const BitmapHandle bitmap(handle);
    // The library may still have drawing calls in GDI's batch.
    GdiFlush();
    BITMAP facts{};
    if (GetObjectW(handle, sizeof(facts), &facts) == 0 || facts.bmWidth <= 0 || facts.bmHeight == 0)
        throw Failure(L"the bitmap handle is not a bitmap", E_HANDLE);
    Picture picture;
    picture.width = static_cast<unsigned>(facts.bmWidth);
    picture.height = static_cast<unsigned>(std::abs(facts.bmHeight));
    picture.pixels.resize(std::size_t{picture.width} * picture.height);

    // GetDIBits turns bottom-up rows around and keeps the fourth byte of 32-bit pixels.
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = facts.bmWidth;
    info.bmiHeader.biHeight = -static_cast<LONG>(picture.height);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    const HDC screen = GetDC(nullptr);
    const int rows =
        GetDIBits(screen, handle, 0, picture.height, picture.pixels.data(), &info, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    if (rows != static_cast<int>(picture.height))
        throw Failure(L"the bitmap's pixels cannot be read");
    return picture;
}

Picture TakePicture(HICON handle) {
    const IconHandle icon(handle);
    ICONINFO info{};
    if (!GetIconInfo(handle, &info))
        Check(HRESULT_FROM_WIN32(GetLastError()), L"GetIconInfo");
    BitmapHandle mask(info.hbmMask);
    if (!info.hbmColor)
        throw Failure(L"the icon has no colours");
    Picture picture = TakePicture(info.hbmColor);
    picture.isOpaque = false;

    constexpr std::uint32_t alpha = 0xFF000000;
    const bool hasAlpha = std::any_of(picture.pixels.begin(), picture.pixels.end(),
                                      [](std::uint32_t pixel) { return (pixel & alpha) != 0; });
    if (!hasAlpha && mask) {
        const Picture hidden = TakePicture(mask.release());
        for (std::size_t i = 0; i < std::min(picture.pixels.size(), hidden.pixels.size()); ++i)
            if ((hidden.pixels[i] & ~alpha) == 0)
                picture.pixels[i] |= alpha;
    }
    return picture;
}

} // namespace vantrel::tools
