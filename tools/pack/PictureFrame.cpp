#include "tools/pack/PictureFrame.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/NumberText.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace vantrel::tools {

namespace {

constexpr unsigned largestSide = std::numeric_limits<std::uint16_t>::max();

// A decoder has to start over when asked for earlier rows, so a rotated picture is read in a few large strips
// of up to 33 million pixels.
constexpr std::size_t stripBytes = 1U << 27;

// A decoder may hold all of a picture when asked for part of its rows, as Wine's does.
constexpr std::uint64_t mostTurnedPixels = 1U << 28;

} // namespace

PictureFrame::PictureFrame(CopyArea copyArea, UINT width, UINT height, Orientation orientation,
                           const std::wstring& name)
    : copyArea_(std::move(copyArea)), orientation_(orientation) {
    if (width == 0 || height == 0 || width > largestSide || height > largestSide)
        throw Failure(name + L": " + SizeText(width, height) +
                      L" pixels; a ZMI frame must have 1 to 65535 in each direction");
    if (orientation != Orientation{} && std::uint64_t{width} * height > mostTurnedPixels)
        throw Failure(name + L": " + SizeText(width, height) +
                      L" pixels are too many to turn upright; --no-rotate packs them as stored");
    width_ = static_cast<std::uint16_t>(orientation.transposed ? height : width);
    height_ = static_cast<std::uint16_t>(orientation.transposed ? width : height);
}

void PictureFrame::ReadRows(const RowsTaker& take) const {
    const auto [mirroredX, mirroredY, transposed] = orientation_;
    const std::size_t bytesAtOnce = transposed || mirroredY ? stripBytes : bandBytes;
    const auto most = static_cast<int>(std::max(bytesAtOnce / (width_ * sizeof(Color)), std::size_t{1}));
    std::vector<Color> stored;
    std::vector<Color> rows;
    for (int first = 0; first < height_; first += most) {
        const int count = std::min(most, height_ - first);
        const int begin = (transposed ? mirroredX : mirroredY) ? height_ - first - count : first;
        const WICRect area = transposed ? WICRect{begin, 0, count, width_} : WICRect{0, begin, width_, count};
        stored.resize(std::size_t{width_} * static_cast<std::size_t>(count));
        copyArea_(area, stored);
        if (orientation_ == Orientation{}) {
            take(stored);
            continue;
        }
        for (int y = 0; y < count; ++y) {
            for (int x = 0; x < width_; ++x) {
                const int column = transposed ? y : x;
                const int row = transposed ? x : y;
                rows.push_back(
                    stored[static_cast<std::size_t>(mirroredY ? area.Height - 1 - row : row) *
                               static_cast<std::size_t>(area.Width) +
                           static_cast<std::size_t>(mirroredX ? area.Width - 1 - column : column)]);
            }
            if (rows.size() * sizeof(Color) >= bandBytes || y + 1 == count) {
                take(rows);
                rows.clear();
            }
        }
    }
}

} // namespace vantrel::tools
