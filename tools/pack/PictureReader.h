// Pictures of every kind that WIC reads, frame by frame, as displayed: upright and composed.
#pragma once

#include "tools/pack/FrameSource.h"
#include "tools/pack/GifCanvas.h"
#include "tools/pack/StoredFacts.h"
#include "tools/pack/WicPicture.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace vantrel::tools {

// Turns pictures upright by hand, since WIC's own rotator answers E_NOTIMPL under Wine 8.
class PictureReader final : public FrameSource {
public:
    // Throws Failure.
    PictureReader(ComPtr<IWICImagingFactory> factory, const std::filesystem::path& path, bool rotate);

    PictureReader(const PictureReader&) = delete;
    PictureReader& operator=(const PictureReader&) = delete;

    unsigned FrameCount() const override { return icon_ ? 1 : picture_.FrameCount(); }
    bool LacksFrames() const override { return lacksFrames_; }
    ZmiFrame Frame(unsigned index) override { return Displayed(index, Stored(index)); }
    void ReadRows(unsigned index, const RowsTaker& take) override;

private:
    // Absent if the canvas shows it.
    std::optional<WicFrame> Stored(unsigned index) const;
    Orientation OrientationOf(unsigned index) const;
    // Throws Failure if a ZMI frame can't have this size.
    ZmiFrame Displayed(unsigned index, const std::optional<WicFrame>& stored) const;

    WicPicture picture_;
    std::optional<GifCanvas> canvas_;
    std::optional<unsigned> icon_; // the only frame wanted
    bool lacksFrames_;
    std::vector<Orientation> orientations_; // of the first frames; the others are upright
};

} // namespace vantrel::tools
