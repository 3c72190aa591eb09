// Reading and decoding of a ZMI picture in one operation.
#pragma once

#include "codec/Decoder.h"

#include <windows.h>

#include <objidl.h>

namespace vantrel {

// Reads the stream when there is one, else the file at the path; with neither, false. `image` comes in empty
// and holds the picture on true; see decode for framesWanted and takePixels. A stream's position is moved,
// its reference count is not; a file is closed before the call returns. Throws std::bad_alloc, and what
// decode throws.
bool load(const wchar_t* path, IStream* stream, DecodedImage& image, std::uint32_t framesWanted = allFrames,
          const PixelTaker& takePixels = {});

} // namespace vantrel
