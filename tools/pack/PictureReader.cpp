#include "tools/pack/PictureReader.h"

#include "tools/terminal/LongPath.h"

#include <algorithm>
#include <utility>

namespace vantrel::tools {

PictureReader::PictureReader(ComPtr<IWICImagingFactory> factory, const std::filesystem::path& path,
                             bool rotate)
    : picture_(std::move(factory), path) {
    if (picture_.Is(GUID_ContainerFormatGif)) {
        canvas_.emplace(picture_);
        const WicFrame first = picture_.Frame(0);
        if (FrameCount() == 1 && first.Width() == canvas_->Width() && first.Height() == canvas_->Height())
            canvas_.reset(); // nothing to compose, so no memory is needed for the whole canvas
    }
    if (rotate && picture_.Is(GUID_ContainerFormatJpeg))
        orientation_ = OrientationFromExif(ReadJpegOrientation(LongPath(path)));
    rotateFrames_ = rotate && picture_.Is(GUID_ContainerFormatTiff);
}

PictureFrame PictureReader::Frame(unsigned index) {
    if (canvas_)
        return {[this, index](const WICRect& area, std::span<Color> pixels) {
                    const auto row = static_cast<std::size_t>(area.Y) * canvas_->Width();
                    std::ranges::copy(canvas_->Show(index).subspan(row, pixels.size()), pixels.begin());
                },
                canvas_->Width(), canvas_->Height(), orientation_, picture_.Name()};

    const WicFrame frame = picture_.Frame(index);
    return {[frame](const WICRect& area, std::span<Color> pixels) { frame.CopyPixels(area, pixels); },
            frame.Width(), frame.Height(),
            rotateFrames_ ? OrientationFromExif(frame.Number(L"/ifd/{ushort=274}")) : orientation_,
            frame.Name()};
}

} // namespace vantrel::tools
