// The minimum work for the same result, written directly on GDI; shares nothing with the library.
#pragma once

#include "support/Handles.h"

#include <objidl.h>

namespace vantrel::bench {

// Each reads all bytes at once into a new buffer.
void FloorRead(IStream& stream);
void FloorRead(const wchar_t* path);

// Each reads header, trailer and payload through one reused buffer of 64 KiB and does nothing else.
void WindowRead(IStream& stream);
void WindowRead(const wchar_t* path);

// Reads, makes a 32-bit picture of width x height and writes each of its pixels once, scales it with one
// HALFTONE StretchBlt into a picture that fits into edge x edge, and makes one pass over its alpha.
UniqueBitmap FloorThumbnail(IStream& stream, int width, int height, int edge);
UniqueBitmap FloorThumbnail(const wchar_t* path, int width, int height, int edge);

// The same for two icons of 32 and 16 pixels, with their masks, fills and CreateIconIndirect.
void FloorIconPair(const wchar_t* path, int width, int height);

} // namespace vantrel::bench
