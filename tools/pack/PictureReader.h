// Pictures of every kind that WIC reads, frame by frame, as displayed.
#pragma once

#include "tools/pack/GifCanvas.h"
#include "tools/pack/PictureFrame.h"
#include "tools/pack/WicPicture.h"

#include <filesystem>
#include <optional>

namespace vantrel::tools {

// An open picture file.
class PictureReader {
public:
    // Turns pictures upright if asked to. Throws Failure.
    PictureReader(ComPtr<IWICImagingFactory> factory, const std::filesystem::path& path, bool rotate);
    PictureReader(const PictureReader&) = delete;
    PictureReader& operator=(const PictureReader&) = delete;

    unsigned FrameCount() const { return picture_.FrameCount(); }
    // Valid as long as the reader. Throws Failure, as do the frame's operations.
    PictureFrame Frame(unsigned index);

private:
    WicPicture picture_;
    std::optional<GifCanvas> canvas_;
    bool rotateFrames_ = false;
    Orientation orientation_; // of all frames
};

} // namespace vantrel::tools
