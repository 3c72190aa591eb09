// PNG files, written through the Windows Imaging Component.
#pragma once

#include "tools/preview/Picture.h"

#include <filesystem>

namespace vantrel::tools {

// Rows from top to bottom, as in Picture; an opaque one becomes a file without alpha. Throws Failure or
// std::filesystem::filesystem_error; the file appears only when it is complete.
void WritePng(const std::filesystem::path& file, unsigned width, unsigned height, bool isOpaque,
              const std::uint32_t* pixels);

inline void WritePng(const std::filesystem::path& file, const Picture& picture) {
    WritePng(file, picture.width, picture.height, picture.isOpaque, picture.pixels.data());
}

} // namespace vantrel::tools
