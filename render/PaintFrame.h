// Painting one decoded frame at its natural size.
#pragma once

#include "codec/DecodedImage.h"
#include "codec/FramePixels.h"
#include "support/BitmapSurface.h"

#include <cstddef>

namespace vantrel {

// Makes the target a DIB section of the frame's size and paints the frame's pixels into it, with alpha bytes
// of 0. False for a frame of the reserved mode, when no DIB section can be created for a frame that has
// pixels, or when its pixels can't be read. Throws std::out_of_range when the frame, its palette or some of
// its pixels are missing.
bool PaintFrame(const DecodedImage& image, std::size_t frameIndex, FramePixels& pixels,
                BitmapSurface& target);

} // namespace vantrel
