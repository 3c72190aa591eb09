// PNG files, written through the Windows Imaging Component.
#pragma once

#include "tools/preview/Picture.h"
#include "tools/terminal/OutputGuard.h"

#include <filesystem>

namespace vantrel::tools {

// Rows from top to bottom, as in Picture; an opaque one becomes a file without alpha. Throws Failure,
// and what the guard throws; the file appears only when it is complete.
void WritePng(const std::filesystem::path& file, const OutputGuard& guard, unsigned width, unsigned height,
              bool isOpaque, const std::uint32_t* pixels);

inline void WritePng(const std::filesystem::path& file, const OutputGuard& guard, const Picture& picture) {
    WritePng(file, guard, picture.width, picture.height, picture.isOpaque, picture.pixels.data());
}

} // namespace vantrel::tools
