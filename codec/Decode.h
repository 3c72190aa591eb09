// Decoding: payload bytes to DecodedImage.
#pragma once

#include "codec/ByteSource.h"
#include "codec/DecodedImage.h"
#include "codec/FramePixels.h"

#include <cstdint>
#include <functional>

namespace vantrel {

// What a DecodedImage is to hold.
enum class Keep {
    Facts,      // no pixels, and only the first palette
    Everything, // also all frames' pixels and palettes
};

// Receives the decoded image and frame 0's pixels while the file is being read, takes as many of them as it
// wants, and returns whether to go on.
using PixelTaker = std::function<bool(const DecodedImage& image, FramePixels& pixels)>;

// Fills an empty image. Whatever is kept, every record is read, every range checked and every byte of the
// payload read, so that what is kept does not decide whether a file decodes. takePixels, if given, is called
// once the image is complete. False when a range lies outside the payload, the source fails or takePixels
// returns false; the image's contents are then unspecified. Throws std::out_of_range for a mode-0 file whose
// frame table is empty, and for any other file without a frame if takePixels is given; propagates what
// takePixels throws.
bool decode(PayloadReader& payload, DecodedImage& image, Keep keep, const PixelTaker& takePixels = {});

// Reads a file and decodes its payload; false also when its header or trailer is not valid.
bool DecodeFile(ByteSource& source, DecodedImage& image, Keep keep, const PixelTaker& takePixels = {},
                std::uint32_t windowSize = PayloadReader::standardWindow);

} // namespace vantrel
