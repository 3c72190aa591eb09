// Animated GIF files; the pixels are compressed by the Windows Imaging Component.
#pragma once

#include "codec/ZmiFormat.h"
#include "tools/terminal/OutputFile.h"

#include <cstdint>
#include <optional>
#include <span>

namespace vantrel::tools {

// The animation loops forever and is as large as its largest frame. All operations throw Failure.
class GifWriter {
public:
    // The output must outlive the writer, and the caller commits it.
    GifWriter(OutputFile& output, unsigned delayMilliseconds);

    // A frame of width x height indices, rows from top to bottom, which replaces the one before it.
    void AddFrame(std::uint16_t width, std::uint16_t height, std::span<std::uint8_t> indices,
                  const Palette& palette, std::optional<std::uint8_t> transparentIndex);
    void Finish();

private:
    OutputFile& output_;
    unsigned delay_; // in hundredths of a second
    std::uint16_t width_ = 0;
    std::uint16_t height_ = 0;
};

} // namespace vantrel::tools
