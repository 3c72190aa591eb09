// The painting of one decoded frame at its natural size.
#pragma once

#include "codec/DecodedImage.h"
#include "support/BitmapSurface.h"

#include <cstddef>

namespace vantrel {

// Makes the target a DIB section of the frame's size and paints the frame into it, every pixel opaque in
// colour and 0 in the alpha byte. False for a frame of the reserved mode, or when a frame that has pixels
// gets no DIB section. Throws std::out_of_range when the frame, its palette or some of its pixels are not
// there.
bool PaintFrame(const DecodedImage& image, std::size_t frameIndex, BitmapSurface& target);

} // namespace vantrel
