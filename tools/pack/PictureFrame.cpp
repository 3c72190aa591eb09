#include "tools/pack/PictureFrame.h"

#include "tools/terminal/Failure.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

namespace vantrel::tools {

namespace {

constexpr unsigned largestSide = std::numeric_limits<std::uint16_t>::max();

// A decoder has to start over when asked for earlier rows, so a rotated picture is read in a few large strips
// of up to 33 million pixels.
constexpr std::size_t stripBytes = 1U << 27;
constexpr std::size_t chunkBytes = 1U << 20;

// A decoder may hold all of a picture when asked for part of its rows, as Wine's does.
constexpr std::uint64_t mostTurnedPixels = 1U << 28;

} // namespace

PictureFrame::PictureFrame(CopyArea copyArea, UINT width, UINT height, Orientation orientation,
                           const std::wstring& name)
    : copyArea_(std::move(copyArea)), orientation_(orientation) {
    if (width == 0 || height == 0 || width > largestSide || height > largestSide)
        throw Failure(name + L": " + std::to_wstring(width) + L" x " + std::to_wstring(height) +
                      L" pixels; a ZMI frame must have 1 to 65535 in each direction");
    if (orientation != Orientation{} && std::uint64_t{width} * height > mostTurnedPixels)
        throw Failure(name + L": " + std::to_wstring(width) + L" x " + std::to_wstring(height) +
                      L" pixels are too many to turn upright; --no-rotate packs them as stored");
    width_ = static_cast<std::uint16_t>(orientation.transposed ? height : width);
    height_ = static_cast<std::uint16_t>(orientation.transposed ? width : height);
}

void PictureFrame::ReadRows(unsigned firstRow, std::span<Color> rows) {
    const auto count = static_cast<unsigned>(rows.size() / width_);
    if (orientation_ == Orientation{}) {
        copyArea_({0, static_cast<INT>(firstRow), width_, static_cast<INT>(count)}, rows);
        return;
    }

    if (firstRow < stripFirst_ || (firstRow + count - stripFirst_) * std::size_t{width_} > strip_.size()) {
        std::size_t stripRows = count;
        if (orientation_.transposed || orientation_.mirroredY)
            stripRows *= std::max(stripBytes / rows.size_bytes(), std::size_t{1});
        FillStrip(firstRow, static_cast<unsigned>(std::min<std::size_t>(stripRows, height_ - firstRow)));
    }
    std::copy_n(strip_.begin() + static_cast<std::ptrdiff_t>((firstRow - stripFirst_) * std::size_t{width_}),
                rows.size(), rows.begin());
}

void PictureFrame::FillStrip(unsigned firstRow, unsigned count) {
    strip_.resize(std::size_t{count} * width_);
    stripFirst_ = firstRow;

    // The part of the stored picture that the strip covers.
    const auto [mirroredX, mirroredY, transposed] = orientation_;
    const unsigned behind = height_ - firstRow - count;
    WICRect area = {0, 0, width_, static_cast<INT>(count)};
    if (transposed)
        area = {static_cast<INT>(mirroredX ? behind : firstRow), 0, static_cast<INT>(count), width_};
    else
        area.Y = static_cast<INT>(mirroredY ? behind : firstRow);

    // Where its pixels go: the first one's position, and the step for each column and for each row.
    std::ptrdiff_t columnStep = transposed ? width_ : 1;
    std::ptrdiff_t rowStep = transposed ? 1 : width_;
    std::ptrdiff_t place = 0;
    if (mirroredX) {
        place += (area.Width - 1) * columnStep;
        columnStep = -columnStep;
    }
    if (mirroredY) {
        place += (area.Height - 1) * rowStep;
        rowStep = -rowStep;
    }

    const auto columns = static_cast<std::size_t>(area.Width);
    const INT rowsLeft = area.Height;
    const INT chunkRows = static_cast<INT>(std::max(chunkBytes / (columns * sizeof(Color)), std::size_t{1}));
    std::vector<Color> chunk;
    for (INT done = 0; done < rowsLeft; done += area.Height, area.Y += area.Height) {
        area.Height = std::min(chunkRows, rowsLeft - done);
        chunk.resize(columns * static_cast<std::size_t>(area.Height));
        copyArea_(area, chunk);
        for (INT x = 0; x < area.Width; ++x)
            for (INT y = 0; y < area.Height; ++y)
                strip_[static_cast<std::size_t>(place + x * columnStep + (done + y) * rowStep)] =
                    chunk[static_cast<std::size_t>(y) * columns + static_cast<std::size_t>(x)];
    }
}

} // namespace vantrel::tools
