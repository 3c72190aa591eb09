// Loading a ZMI picture from what the Shell passes in.
#pragma once

#include "codec/Decode.h"

#include <windows.h>

#include <objidl.h>

namespace vantrel {

// Reads the stream if there is one, else the file at the path; with neither, false. `image` must be empty and
// holds the facts on true; see decode for takePixels. A stream's position changes, its reference count does
// not; a file is closed before the call returns. Throws std::bad_alloc, and what decode throws.
bool load(const wchar_t* path, IStream* stream, DecodedImage& image, const PixelTaker& takePixels = {});

} // namespace vantrel
