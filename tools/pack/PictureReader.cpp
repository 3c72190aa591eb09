#include "tools/pack/PictureReader.h"

#include "tools/inspection/ZmiFile.h"
#include "tools/pack/StoredFacts.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/NumberText.h"

#include <algorithm>
#include <utility>

namespace vantrel::tools {

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

SourceFrame PictureReader::Frame(unsigned index) {
    const PictureFrame frame = Displayed(index);
    return {.width = frame.Width(), .height = frame.Height()};
}

void PictureReader::ReadRows(unsigned index, const RowsTaker& take) {
    Displayed(index).ReadRows(take);
}

PictureFrame PictureReader::Displayed(unsigned index) {
    if (canvas_)
        return {[this, index](const WICRect& area, std::span<Color> pixels) {
                    const auto row = static_cast<std::size_t>(area.Y) * canvas_->Width();
                    std::ranges::copy(canvas_->Show(index).subspan(row, pixels.size()), pixels.begin());
                },
                canvas_->Width(),
                canvas_->Height(),
                {},
                picture_.Name()};

    const WicFrame frame = picture_.Frame(icon_.value_or(index));
    return {[frame](const WICRect& area, std::span<Color> pixels) { frame.CopyPixels(area, pixels); },
            frame.Width(), frame.Height(),
            index < orientations_.size() ? orientations_[index] : Orientation{}, frame.Name()};
}

} // namespace vantrel::tools
