// The single path from a ZMI file to what the Shell receives.
#pragma once

#include "support/TextBuffer.h"

#include <windows.h>

#include <objidl.h>

#include <cstdint>

namespace vantrel {

enum class FitMode : std::uint32_t {
    Letterbox = 0, // a bitmap of exactly the box, the picture centred on the key colour
    Fitted = 1,    // a bitmap of the fitted size, every pixel opaque
};

// What to read and what to return; null outputs are not wanted. Sizes in pixels.
struct RenderImageArguments {
    const wchar_t* path = nullptr; // ignored when there is a stream
    IStream* stream = nullptr;
    HICON* largeIcon = nullptr;
    std::uint32_t largeSize = 0;
    HICON* smallIcon = nullptr;
    std::uint32_t smallSize = 0;
    HBITMAP* bitmap = nullptr;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t* dimensions = nullptr; // two numbers: width and height of frame 0
    TextBuffer* text = nullptr;
    std::uint32_t* bitsPerPixel = nullptr;
    FitMode fitMode = FitMode::Letterbox;
};

// The picture is painted while the file is read, or not at all if neither icon nor bitmap is wanted; outputs
// are stored when both are done. True when everything wanted was returned; the caller owns the icons and the
// bitmap. On false each output is either untouched or complete: a large icon made before the small one failed
// belongs to the caller. Throws std::out_of_range when frame 0 or its pixels are missing, and std::bad_alloc.
bool RenderImage(const RenderImageArguments& arguments);

} // namespace vantrel
