// A small drawing surface: a memory device context with one bitmap selected into it.
#pragma once

#include "support/Handles.h"

#include <cstdint>

namespace vantrel {

enum class BitmapKind {
    Compatible = 0, // like the screen
    Dib = 1,        // 32-bit DIB section, bottom-up, words 0xAARRGGBB
};

// Used within one call on one thread. Operations report failure by their result; none throws. Destruction
// deletes the bitmap unless it was detached.
class BitmapSurface {
public:
    BitmapSurface() = default;
    BitmapSurface(const BitmapSurface&) = delete;
    BitmapSurface& operator=(const BitmapSurface&) = delete;
    ~BitmapSurface() { Destroy(); }

    // Gives the surface a new bitmap of this size in pixels; an existing context is kept, an existing bitmap
    // replaced. Also true when a DIB section could not be created: Bitmap() is then null.
    bool Create(std::uint32_t width, std::uint32_t height, BitmapKind kind);

    // Fills between the edges, right and bottom excluded; four zeros mean the whole surface.
    bool Fill(COLORREF color, int left, int top, int right, int bottom);

    // Scales with halftone; a source width or height of 0 means that of the destination.
    bool StretchFrom(HDC source, int x, int y, int width, int height, int sourceX, int sourceY,
                     int sourceWidth, int sourceHeight);

    // DIB sections only. Inside the rectangle every pixel becomes opaque; outside, pixels of the key colour
    // become transparent and others opaque. The rectangle's rows count in memory order, that is, from the
    // bottom.
    void SetAlphaOutside(COLORREF key, std::uint32_t x, std::uint32_t y, std::uint32_t width,
                         std::uint32_t height);

    bool SetPixelAt(int x, int y, COLORREF color);

    // Deselects the bitmap and transfers its ownership; null when there is none.
    UniqueBitmap Detach();

    // Resets to the empty surface.
    void Destroy();

    HDC Dc() const { return dc_.get(); }
    HBITMAP Bitmap() const { return bitmap_.get(); }
    // The DIB section's pixels, Width() words per row, the bottom row first; null without one. Call GdiFlush
    // before touching them after a drawing operation.
    std::uint32_t* Bits() const { return bits_; }
    std::int32_t Width() const { return width_; }
    std::int32_t Height() const { return height_; }

private:
    void Deselect();

    UniqueBitmap bitmap_;
    UniqueDc dc_;
    HGDIOBJ previousObject_ = nullptr;
    std::uint32_t* bits_ = nullptr;
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
};

} // namespace vantrel
