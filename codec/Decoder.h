// The decoder: payload bytes to DecodedImage.
#pragma once

#include "codec/DecodedImage.h"
#include "codec/FramePixels.h"

#include <cstdint>
#include <functional>
#include <limits>

namespace vantrel {

inline constexpr std::uint32_t allFrames = std::numeric_limits<std::uint32_t>::max();

// Is given frame 0's pixels while their file is being read, takes any number of them, and says whether to go
// on.
using PixelTaker = std::function<bool(FramePixels& pixels)>;

// Fills an empty image. Of the frames only the first framesWanted get their pixels and colour tables of their
// own; every record is read, every range checked and every byte of the payload read in any case, so that
// whether a file decodes does not depend on how many are wanted. takePixels, when there is one, is called
// once the image is complete. False when a range lies outside the payload, the source fails or takePixels
// says so; the image then holds anything. Throws std::out_of_range for a mode-0 file whose frame table is
// empty, and for any other without a frame whose pixels are to be taken; passes on what takePixels throws.
bool decode(PayloadReader& payload, DecodedImage& image, std::uint32_t framesWanted = allFrames,
            const PixelTaker& takePixels = {});

} // namespace vantrel
