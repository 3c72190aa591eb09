// The contents of a ZMI file, read directly from its bytes.
#pragma once

#include "tests/builder/ZmiBuilder.h"

namespace vantrel::tests {

// The file must have a complete image header; a frame table is read only on demand. Throws std::out_of_range
// for anything outside the file.
struct FileFacts {
    explicit FileFacts(const Bytes& bytes) : file(bytes) {}

    std::uint32_t Header(Field field) const { return GetField(file, payload, field); }
    std::size_t FrameCount() const { return hasTable ? GetField(file, pixels, frame_table::frameCount) : 1; }
    std::size_t RecordAt(std::size_t i) const { return pixels + frame_table::size + i * frame_record::size; }
    std::uint32_t Record(std::size_t i, Field field) const { return GetField(file, RecordAt(i), field); }
    std::uint32_t Width(std::size_t i) const {
        return hasTable ? Record(i, frame_record::width) : Header(image_header::width);
    }
    std::uint32_t Height(std::size_t i) const {
        return hasTable ? Record(i, frame_record::height) : Header(image_header::height);
    }
    std::size_t PixelsAt(std::size_t i) const {
        return hasTable ? Record(i, frame_record::dataOffset) : pixels;
    }
    std::size_t FrameBytes(std::size_t i) const { return PixelBytes(mode, Width(i), Height(i)); }

    const Bytes& file;
    std::size_t payload = GetField(file, 0, file_header::dataOffset);
    std::size_t pixels = Header(image_header::pixelOffset);
    unsigned mode = Header(image_header::flags) / 8 % 4;
    bool blank = pixels == 0;
    bool hasTable = !blank && Header(image_header::flags) % 2 == 1;
};

} // namespace vantrel::tests
