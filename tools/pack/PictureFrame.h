// One frame of a picture as displayed: upright, composed, in 32bppBGRA.
#pragma once

#include "tools/pack/FrameSource.h"
#include "tools/picture/Rgb565.h"

#include <windows.h>

#include <wincodec.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace vantrel::tools {

// How the stored picture becomes the one displayed: mirrored first, then rows and columns are swapped.
struct Orientation {
    bool mirroredX = false;
    bool mirroredY = false;
    bool transposed = false;

    bool operator==(const Orientation&) const = default;
};

// Turned upright by hand, since WIC's own rotator answers E_NOTIMPL under Wine 8.
class PictureFrame {
public:
    // Copies an area of the stored picture, row by row.
    using CopyArea = std::function<void(const WICRect& area, std::span<Color> pixels)>;

    // Width and height are those of the stored picture. The name is used in error messages. Throws Failure if
    // a ZMI frame can't have this size.
    PictureFrame(CopyArea copyArea, UINT width, UINT height, Orientation orientation,
                 const std::wstring& name);

    // In pixels; never above 65,535, the ZMI format's maximum.
    std::uint16_t Width() const { return width_; }
    std::uint16_t Height() const { return height_; }

    void ReadRows(const RowsTaker& take) const;

private:
    CopyArea copyArea_;
    Orientation orientation_;
    std::uint16_t width_ = 0;
    std::uint16_t height_ = 0;
};

} // namespace vantrel::tools
