#include "support/BitmapSurface.h"

#include <limits>
#include <utility>

namespace vantrel {

namespace {

// 0x00BBGGRR to 0x00RRGGBB.
std::uint32_t MemoryOrder(COLORREF colour) {
    return std::uint32_t{GetRValue(colour)} << 16 | std::uint32_t{GetGValue(colour)} << 8 | GetBValue(colour);
}

UniqueBitmap MakeDibSection(HDC screen, std::uint32_t width, std::uint32_t height, std::uint32_t*& bits) {
    // Beyond 2 GiB the system's own size arithmetic can't be relied upon.
    constexpr std::uint64_t mostPixels = std::numeric_limits<std::int32_t>::max() / sizeof(std::uint32_t);
    if (width > mostPixels || height > mostPixels || std::uint64_t{width} * height > mostPixels)
        return nullptr;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = static_cast<LONG>(width);
    info.bmiHeader.biHeight = static_cast<LONG>(height);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* pixels = nullptr;
    UniqueBitmap bitmap(CreateDIBSection(screen, &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    if (bitmap)
        bits = static_cast<std::uint32_t*>(pixels);
    return bitmap;
}

} // namespace

bool BitmapSurface::Create(std::uint32_t width, std::uint32_t height, BitmapKind kind) {
    width_ = static_cast<std::int32_t>(width);
    height_ = static_cast<std::int32_t>(height);
    const UniqueScreenDc screen(GetDC(nullptr));
    if (!screen)
        return false;
    if (!dc_)
        dc_.reset(CreateCompatibleDC(screen.get()));
    if (!dc_)
        return false;
    Deselect();
    bitmap_.reset();
    if (kind == BitmapKind::Dib) {
        bitmap_ = MakeDibSection(screen.get(), width, height, bits_);
    } else {
        bitmap_.reset(CreateCompatibleBitmap(screen.get(), width_, height_));
        if (!bitmap_)
            return false;
    }
    if (bitmap_)
        previousObject_ = SelectObject(dc_.get(), bitmap_.get());
    return true;
}

bool BitmapSurface::Fill(COLORREF colour, int left, int top, int right, int bottom) {
    RECT area{left, top, right, bottom};
    if (left == 0 && top == 0 && right == 0 && bottom == 0)
        area = {0, 0, width_, height_};
    const UniqueBrush brush(CreateSolidBrush(colour));
    return brush && FillRect(dc_.get(), &area, brush.get()) != 0;
}

bool BitmapSurface::StretchFrom(HDC source, int x, int y, int width, int height, int sourceX, int sourceY,
                                int sourceWidth, int sourceHeight) {
    if (SetStretchBltMode(dc_.get(), HALFTONE) == 0)
        SetStretchBltMode(dc_.get(), COLORONCOLOR);
    return StretchBlt(dc_.get(), x, y, width, height, source, sourceX, sourceY,
                      sourceWidth == 0 ? width : sourceWidth, sourceHeight == 0 ? height : sourceHeight,
                      SRCCOPY) != FALSE;
}

void BitmapSurface::SetAlphaOutside(COLORREF key, std::uint32_t x, std::uint32_t y, std::uint32_t width,
                                    std::uint32_t height) {
    if (!bits_)
        return;
    // Windows batches drawing calls; they must have happened before the pixels are read.
    GdiFlush();
    constexpr std::uint32_t opaque = 0xFF000000;
    const std::uint32_t keyWord = MemoryOrder(key);
    std::uint32_t* pixel = bits_;
    // Rows count in memory order while drawing counts from the top: with an odd difference in height the
    // rectangle lies one row lower than what was drawn. It is meant so.
    for (std::int64_t row = 0; row < height_; ++row) {
        const bool rowInside = row >= y && row < std::int64_t{y} + height;
        for (std::int64_t column = 0; column < width_; ++column, ++pixel) {
            const bool inside = rowInside && column >= x && column < std::int64_t{x} + width;
            const std::uint32_t colour = *pixel & ~opaque;
            *pixel = inside || colour != keyWord ? colour | opaque : colour;
        }
    }
}

bool BitmapSurface::SetPixelAt(int x, int y, COLORREF colour) {
    return SetPixel(dc_.get(), x, y, colour) != CLR_INVALID;
}

void BitmapSurface::Deselect() {
    if (bitmap_)
        SelectObject(dc_.get(), previousObject_);
    previousObject_ = nullptr;
    bits_ = nullptr;
}

UniqueBitmap BitmapSurface::Detach() {
    // The new owner may read the pixels at once.
    GdiFlush();
    Deselect();
    return std::move(bitmap_);
}

void BitmapSurface::Destroy() {
    dc_.reset();
    bitmap_.reset();
    previousObject_ = nullptr;
    bits_ = nullptr;
    width_ = 0;
    height_ = 0;
}

} // namespace vantrel
