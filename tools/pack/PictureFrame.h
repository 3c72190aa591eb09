// One frame of a picture as displayed: upright, composed, in 32bppBGRA, row by row.
#pragma once

#include "tools/pack/Orientation.h"
#include "tools/picture/Rgb565.h"

#include <windows.h>

#include <wincodec.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace vantrel::tools {

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

    // Fills rows with whole rows, starting at the given one, top to bottom. Fast if called with the same
    // number of rows each time, in order.
    void ReadRows(unsigned firstRow, std::span<Color> rows);

private:
    void FillStrip(unsigned firstRow, unsigned count);

    CopyArea copyArea_;
    Orientation orientation_;
    std::uint16_t width_ = 0;
    std::uint16_t height_ = 0;
    // Upright rows of a picture that is stored rotated or mirrored.
    std::vector<Color> strip_;
    unsigned stripFirst_ = 0;
};

} // namespace vantrel::tools
