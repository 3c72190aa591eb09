// Pictures of every kind that WIC reads, frame by frame, as displayed.
#pragma once

#include "tools/pack/FrameSource.h"
#include "tools/pack/GifCanvas.h"
#include "tools/pack/PictureFrame.h"
#include "tools/pack/WicPicture.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace vantrel::tools {

class PictureReader final : public FrameSource {
public:
    // Turns pictures upright if asked to. Throws Failure.
    PictureReader(ComPtr<IWICImagingFactory> factory, const std::filesystem::path& path, bool rotate);

    PictureReader(const PictureReader&) = delete;
    PictureReader& operator=(const PictureReader&) = delete;

    unsigned FrameCount() const override { return icon_ ? 1 : picture_.FrameCount(); }
    bool LacksFrames() const override { return lacksFrames_; }
    SourceFrame Frame(unsigned index) override;
    void ReadRows(unsigned index, const RowsTaker& take) override;

private:
    PictureFrame Displayed(unsigned index);

    WicPicture picture_;
    std::optional<GifCanvas> canvas_;
    std::optional<unsigned> icon_; // the only frame wanted
    bool lacksFrames_;
    std::vector<Orientation> orientations_; // of the first frames; the others are upright
};

} // namespace vantrel::tools
