// Writes a ZMI file from front to back: headers and tables first, then the rows of each frame, then the
// trailer.
#pragma once

#include "codec/ZmiFormat.h"
#include "tools/terminal/OutputFile.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vantrel::tools {

struct ZmiFrame {
    std::uint16_t width = 0; // pixels
    std::uint16_t height = 0;
    std::optional<std::uint32_t> transparentKey{}; // 16-bit colour or index
};

// What a file contains apart from its pixels.
struct ZmiContent {
    std::string title; // in the ANSI code page, at most 34 bytes
    PixelMode mode = PixelMode::Rgb565;
    std::vector<ZmiFrame> frames;   // empty: the blank picture
    std::optional<Palette> palette; // for indexed mode
};

// Throws Failure when a file has 2 GiB or more, or more than 65,535 frames: readers treat positions in the
// file as signed 32-bit numbers and count frames in 16 bits.
void CheckZmiLimits(std::size_t frames, std::uint64_t bytes);

// The length of the whole file in bytes. Throws what CheckZmiLimits throws.
std::uint32_t ZmiFileSize(const ZmiContent& content);

// All frames of an indexed picture share one table: the format's readers assign tables of later frames to the
// wrong frames.
class ZmiWriter {
public:
    // Writes everything before the pixels. Throws what ZmiFileSize throws.
    ZmiWriter(OutputFile& output, const ZmiContent& content);

    // Bytes of whole rows, frame by frame. Throws Failure.
    void WriteRows(std::span<const std::byte> rows);
    // Writes the trailer. Throws Failure if there were more or fewer rows than announced.
    void Finish();

private:
    OutputFile& output_;
    std::uint64_t bytesLeft_;
};

} // namespace vantrel::tools
