// Reading and decoding of a ZMI picture from any source of bytes.
#pragma once

#include "codec/ByteSource.h"
#include "codec/Decoder.h"

namespace vantrel {

// Reads the source as a ZMI picture into an empty image; see decode for the rest.
bool LoadFrom(ByteSource& source, DecodedImage& image, Keep keep, const PixelTaker& takePixels = {},
              std::uint32_t windowSize = PayloadReader::standardWindow);

} // namespace vantrel
