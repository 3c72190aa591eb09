// The decoder: payload bytes to DecodedImage.
#pragma once

#include "codec/DecodedImage.h"
#include "codec/FramePixels.h"
#include "codec/PayloadReader.h"

#include <functional>

namespace vantrel {

// What a DecodedImage is to hold.
enum class Keep {
    Facts,      // no pixels, and no palette but the first
    Everything, // all frames' pixels and their palettes, too
};

// Is given the decoded image and frame 0's pixels while their file is being read, takes any number of them,
// and says whether to go on.
using PixelTaker = std::function<bool(const DecodedImage& image, FramePixels& pixels)>;

// Fills an empty image. Whatever is kept, every record is read, every range checked and every byte of the
// payload read, so that whether a file decodes does not depend on it. takePixels, when there is one, is
// called once the image is complete. False when a range lies outside the payload, the source fails or
// takePixels says so; the image then holds anything. Throws std::out_of_range for a mode-0 file whose frame
// table is empty, and for any other without a frame whose pixels are to be taken; passes on what takePixels
// throws.
bool decode(PayloadReader& payload, DecodedImage& image, Keep keep, const PixelTaker& takePixels = {});

} // namespace vantrel
