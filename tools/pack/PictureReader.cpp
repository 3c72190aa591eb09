#include "tools/pack/PictureReader.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/NumberText.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace vantrel::tools {

namespace {

constexpr unsigned largestSide = std::numeric_limits<std::uint16_t>::max();

// A decoder has to start over when asked for earlier rows, so a rotated picture is read in a few large strips
// of up to 33 million pixels.
constexpr std::size_t stripBytes = 1U << 27;

// A decoder may hold all of a picture when asked for part of its rows, as Wine's does.
constexpr std::uint64_t mostTurnedPixels = 1U << 28;

} // namespace

PictureReader::PictureReader(ComPtr<IWICImagingFactory> factory, const std::filesystem::path& path,
                             bool rotate)
    : picture_(std::move(factory), path), lacksFrames_(HasMoreFrames(path, picture_.FrameCount())) {
    if (picture_.Is(GUID_ContainerFormatGif)) {
        canvas_.emplace(picture_);
        const WicFrame first = picture_.Frame(0);
        if (FrameCount() == 1 && first.Width() == canvas_->Width() && first.Height() == canvas_->Height())
            canvas_.reset(); // nothing to compose, so no memory is needed for the whole canvas
    }
    if (picture_.Is(GUID_ContainerFormatIco)) {
        constexpr unsigned mostIcons = 1000;
        if (picture_.FrameCount() > mostIcons)
            throw Failure(picture_.Name() + L": an .ico file of " + Grouped(picture_.FrameCount()) +
                          L" pictures; at most " + Grouped(mostIcons) + L" are read");
        icon_ = FindLargestIcon(path, picture_.FrameCount());
    }
    if (rotate && (picture_.Is(GUID_ContainerFormatJpeg) || picture_.Is(GUID_ContainerFormatTiff)))
        orientations_ = ReadOrientations(path, picture_.FrameCount());
}

std::optional<WicFrame> PictureReader::Stored(unsigned index) const {
    return canvas_ ? std::nullopt : std::optional(picture_.Frame(icon_.value_or(index)));
}

Orientation PictureReader::OrientationOf(unsigned index) const {
    return index < orientations_.size() ? orientations_[index] : Orientation{};
}

ZmiFrame PictureReader::Displayed(unsigned index, const std::optional<WicFrame>& stored) const {
    const UINT width = stored ? stored->Width() : canvas_->Width();
    const UINT height = stored ? stored->Height() : canvas_->Height();
    const std::wstring what =
        (stored ? stored->Name() : picture_.Name()) + L": " + SizeText(width, height) + L" pixels";
    if (width == 0 || height == 0 || width > largestSide || height > largestSide)
        throw Failure(what + L"; a ZMI frame must have 1 to 65535 in each direction");
    const Orientation orientation = OrientationOf(index);
    if (orientation != Orientation{} && std::uint64_t{width} * height > mostTurnedPixels)
        throw Failure(what + L" are too many to turn upright; --no-rotate packs them as stored");
    ZmiFrame frame{static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)};
    if (orientation.transposed)
        std::swap(frame.width, frame.height);
    return frame;
}

void PictureReader::ReadRows(unsigned index, const RowsTaker& take) {
    const std::optional<WicFrame> stored = Stored(index);
    const ZmiFrame frame = Displayed(index, stored);
    const int width = frame.width;
    const int height = frame.height;
    const auto [mirroredX, mirroredY, transposed] = OrientationOf(index);
    const std::size_t bytesAtOnce = transposed || mirroredY ? stripBytes : bandBytes;
    const auto most = static_cast<int>(std::max(bytesAtOnce / (frame.width * sizeof(Color)), std::size_t{1}));
    std::vector<Color> strip;
    std::vector<Color> rows;
    for (int first = 0; first < height; first += most) {
        const int count = std::min(most, height - first);
        const int begin = (transposed ? mirroredX : mirroredY) ? height - first - count : first;
        const WICRect area = transposed ? WICRect{begin, 0, count, width} : WICRect{0, begin, width, count};
        strip.resize(std::size_t{frame.width} * static_cast<std::size_t>(count));
        if (stored)
            stored->CopyPixels(area, strip);
        else
            std::copy_n(canvas_->Show(index).begin() + std::ptrdiff_t{begin} * width, strip.size(),
                        strip.begin());
        if (!transposed && !mirroredX && !mirroredY) {
            take(strip);
            continue;
        }
        for (int y = 0; y < count; ++y) {
            for (int x = 0; x < width; ++x) {
                const std::ptrdiff_t column = transposed ? y : x;
                const std::ptrdiff_t row = transposed ? x : y;
                rows.push_back(strip.begin()[(mirroredY ? area.Height - 1 - row : row) * area.Width +
                                             (mirroredX ? area.Width - 1 - column : column)]);
            }
            if (rows.size() * sizeof(Color) >= bandBytes || y + 1 == count) {
                take(rows);
                rows.clear();
            }
        }
    }
}

} // namespace vantrel::tools
