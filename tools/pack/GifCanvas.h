// The canvas on which the frames of a GIF picture are composed.
#pragma once

#include "tools/pack/WicPicture.h"
#include "tools/picture/Rgb565.h"

#include <cstdint>
#include <span>
#include <vector>

namespace vantrel::tools {

// Shows what browsers show: the canvas starts out transparent and is cleared to transparent, whatever
// background the file specifies; it is at least as large as the first frame needs, and later frames are
// clipped to it.
class GifCanvas {
public:
    // The picture must outlive the canvas. Throws Failure.
    explicit GifCanvas(const WicPicture& picture);

    UINT Width() const { return width_; } // pixels
    UINT Height() const { return height_; }

    // Composes the picture up to this frame; cheap for the frame after the previous one. Rows from top to
    // bottom, valid until the next call. Throws Failure.
    std::span<const Color> Show(unsigned index);

private:
    // What the file wants done with a frame before the next one is drawn.
    enum Disposal : unsigned { clearFrame = 2, restoreWhatWasBeneath = 3 };

    // Throws Failure if the canvas and this many pixels beneath a frame are too much to hold.
    void CheckSize(std::uint64_t beneath) const;
    void Draw(const WicFrame& frame);
    void Dispose();
    // One row of the part of the canvas that the last frame covers.
    std::span<Color> CoveredRow(unsigned y);

    const WicPicture& picture_;
    UINT width_;
    UINT height_;
    std::vector<Color> pixels_; // empty until something is shown
    unsigned shown_ = 0;        // frames
    WICRect covered_{};         // by the last one
    unsigned disposal_ = 0;     // of the last one
    std::vector<Color> beneath_;
};

} // namespace vantrel::tools
