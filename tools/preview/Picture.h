// A picture as a host received it, copied out of GDI.
#pragma once

#include "support/Handles.h"
#include "tools/terminal/OutputGuard.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace vantrel::tools {

// Rows from top to bottom, one 0xAARRGGBB word per pixel, not premultiplied.
struct Picture {
    unsigned width = 0;
    unsigned height = 0;
    bool isOpaque = true; // the alpha bytes are meaningless
    std::vector<std::uint32_t> pixels;
};

// Both throw Failure. Thumbnails and extracted images are opaque whatever their alpha bytes hold.
Picture TakePicture(UniqueBitmap bitmap);
// Icons are shown by their alpha, or by their mask if all of their alpha is 0.
Picture TakePicture(UniqueIcon icon);

// Rows and pixels as in Picture. Throws what OutputFile and PngWriter throw; the file appears only once it is
// complete.
void WritePng(const std::filesystem::path& file, const OutputGuard& guard, NameOrigin origin, unsigned width,
              unsigned height, bool isOpaque, const std::uint32_t* pixels);

} // namespace vantrel::tools
