#include "support/BitmapSurface.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace vantrel {

namespace {

// 0x00BBGGRR to 0x00RRGGBB.
std::uint32_t MemoryOrder(COLORREF color) {
    return std::uint32_t{GetRValue(color)} << 16 | std::uint32_t{GetGValue(color)} << 8 | GetBValue(color);
}

constexpr std::uint32_t opaque = 0xFF000000;

void MakeOpaque(std::uint32_t* begin, const std::uint32_t* end) {
    for (std::uint32_t* pixel = begin; pixel != end; ++pixel)
        *pixel |= opaque;
}

// Except for the key colour, which becomes transparent.
void MakeOpaqueButKey(std::uint32_t keyWord, std::uint32_t* begin, const std::uint32_t* end) {
    for (std::uint32_t* pixel = begin; pixel != end; ++pixel) {
        const std::uint32_t color = *pixel & ~opaque;
        *pixel = color == keyWord ? color : color | opaque;
    }
}

UniqueBitmap MakeDibSection(std::uint32_t width, std::uint32_t height, std::uint32_t*& bits) {
    // Beyond 2 GiB the system's own size arithmetic can't be trusted.
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
    UniqueBitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    if (bitmap)
        bits = static_cast<std::uint32_t*>(pixels);
    return bitmap;
}

} // namespace

bool BitmapSurface::Create(std::uint32_t width, std::uint32_t height, BitmapKind kind) {
    width_ = static_cast<std::int32_t>(width);
    height_ = static_cast<std::int32_t>(height);
    if (!dc_)
        dc_.reset(CreateCompatibleDC(nullptr));
    if (!dc_)
        return false;
    Deselect();
    bitmap_.reset();
    if (kind == BitmapKind::Dib) {
        bitmap_ = MakeDibSection(width, height, bits_);
    } else {
        // A memory context's own bitmap is monochrome: only the screen's context has the screen's format.
        const UniqueScreenDc screen(GetDC(nullptr));
        if (screen)
            bitmap_.reset(CreateCompatibleBitmap(screen.get(), width_, height_));
        if (!bitmap_)
            return false;
    }
    if (bitmap_)
        previousObject_ = SelectObject(dc_.get(), bitmap_.get());
    return true;
}

bool BitmapSurface::Fill(COLORREF color, int left, int top, int right, int bottom) {
    RECT area{left, top, right, bottom};
    if (left == 0 && top == 0 && right == 0 && bottom == 0)
        area = {0, 0, width_, height_};
    const UniqueBrush brush(CreateSolidBrush(color));
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
    // Windows batches drawing calls; flush them before reading the pixels.
    GdiFlush();
    const auto columns = static_cast<std::uint32_t>(width_);
    const std::uint32_t left = std::min(x, columns);
    const std::uint32_t right = left + std::min(width, columns - left);
    const std::uint32_t keyWord = MemoryOrder(key);
    std::uint32_t* row = bits_;
    // Rows count in memory order while drawing counts from the top: with an odd difference in height the
    // rectangle lies one row lower than what was drawn. This is intentional.
    for (std::uint32_t r = 0; r < static_cast<std::uint32_t>(height_); ++r, row += columns) {
        if (r >= y && r - y < height) {
            MakeOpaqueButKey(keyWord, row, row + left);
            MakeOpaque(row + left, row + right);
            MakeOpaqueButKey(keyWord, row + right, row + columns);
        } else {
            MakeOpaqueButKey(keyWord, row, row + columns);
        }
    }
}

bool BitmapSurface::SetPixelAt(int x, int y, COLORREF color) {
    return SetPixel(dc_.get(), x, y, color) != CLR_INVALID;
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
