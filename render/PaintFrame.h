// The painting of one decoded frame at its natural size.
#pragma once

#include "codec/DecodedImage.h"
#include "codec/FramePixels.h"
#include "support/BitmapSurface.h"

#include <cstddef>

namespace vantrel {

// Makes the target a DIB section of the frame's size and paints the frame, whose pixels are handed in, into
// it, every pixel opaque in colour and 0 in the alpha byte. False for a frame of the reserved mode, when a
// frame that has pixels gets no DIB section, or when its pixels can't be read. Throws std::out_of_range when
// the frame, its palette or some of its pixels are not there.
bool PaintFrame(const DecodedImage& image, std::size_t frameIndex, FramePixels& pixels,
                BitmapSurface& target);

} // namespace vantrel
