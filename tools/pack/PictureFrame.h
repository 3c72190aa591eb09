// One frame of a picture as one sees it: upright, composed, in 32bppBGRA, row by row.
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

class PictureFrame {
public:
    // Copies an area of the stored picture, row after row.
    using CopyArea = std::function<void(const WICRect& area, std::span<Color> pixels)>;

    // Width and height are those of the stored picture. The name is the one that errors give. Throws
    // Failure when a ZMI frame cannot be of this size.
    PictureFrame(CopyArea copyArea, UINT width, UINT height, Orientation orientation,
                 const std::wstring& name);

    // In pixels; never above 65,535, which is as much as the ZMI format can say.
    std::uint16_t Width() const { return width_; }
    std::uint16_t Height() const { return height_; }

    // Fills rows with whole rows from the given one on, top to bottom. Fast for those that ask for the same
    // number of rows each time, one after the other.
    void ReadRows(unsigned firstRow, std::span<Color> rows);

private:
    void FillStrip(unsigned firstRow, unsigned count);

    CopyArea copyArea_;
    Orientation orientation_;
    std::uint16_t width_ = 0;
    std::uint16_t height_ = 0;
    // Upright rows of a picture that is stored otherwise.
    std::vector<Color> strip_;
    unsigned stripFirst_ = 0;
};

} // namespace vantrel::tools
