// The contents of a ZMI file, read directly from its bytes.
#pragma once

#include "tests/builder/ZmiBuilder.h"

namespace vantrel::tests {

// The file must have a complete image header and outlive this; a frame table is read only on demand. Throws
// std::out_of_range for anything outside the file.
struct FileFacts {
    explicit FileFacts(const Bytes& bytes) : file(bytes) {}

    std::uint32_t Header(Field field) const { return GetField(file, payload, field); }
    std::size_t FrameCount() const { return hasTable ? GetField(file, pixels, frame_table::frameCount) : 1; }
    std::size_t RecordAt(std::size_t i) const { return pixels + frame_table::size + i * frame_record::size; }
    std::uint32_t Record(std::size_t i, Field field) const { return GetField(file, RecordAt(i), field); }
    std::uint32_t Width(std::size_t i) const {
        return hasTable ? Record(i, frame_record::width) : blank ? 1024 : Header(image_header::width);
    }
    std::uint32_t Height(std::size_t i) const {
        return hasTable ? Record(i, frame_record::height) : blank ? 600 : Header(image_header::height);
    }
    std::uint32_t Flags(std::size_t i) const {
        return hasTable ? Record(i, frame_record::flags) : blank ? 0 : Header(image_header::flags);
    }
    std::uint32_t TransparentKey(std::size_t i) const {
        return hasTable ? Record(i, frame_record::transparentKey) : Header(image_header::transparentKey);
    }
    std::size_t PaletteAt(std::size_t i) const {
        return i > 0 ? Record(i, frame_record::paletteOffset) : Header(image_header::paletteOffset);
    }
    std::size_t PixelsAt(std::size_t i) const {
        return hasTable ? Record(i, frame_record::dataOffset) : pixels;
    }
    std::size_t FrameBytes(std::size_t i) const { return PixelBytes(mode, Width(i), Height(i)); }

    const Bytes& file;
    std::size_t payload = GetField(file, 0, file_header::dataOffset);
    std::size_t pixels = Header(image_header::pixelOffset);
    bool blank = pixels == 0;
    unsigned mode = blank ? 0 : Header(image_header::flags) / 8 % 4;
    bool hasTable = !blank && Header(image_header::flags) % 2 == 1;
};

// The pixels of a frame that are all there, in the mode that its own record names. A blank picture has none.
struct FramePixelFacts {
    FramePixelFacts(const Bytes& bytes, std::size_t i) : file(bytes), frame(i) {}

    // As recorded: a bit, an index or a 16-bit colour.
    std::uint32_t Value(std::size_t x, std::size_t y) const {
        const std::size_t row = at + y * rowBytes;
        return mode == 0 ? file.file.at(row + x / 8) >> (7 - x % 8) & 1
                         : GetField(file.file, row + x * mode, {0, mode});
    }
    // As displayed: 0xFFRRGGBB, or 0x00RRGGBB if it is transparent.
    std::uint32_t Shown(std::size_t x, std::size_t y) const {
        const std::uint32_t value = Value(x, y);
        if (mode == 0)
            return value == 0 ? 0xFFFFFFFF : 0xFF000000;
        const std::uint32_t color = mode == 1 ? GetField(file.file, palette + 2 * value, {0, 2}) : value;
        return (hasKey && value == key ? 0 : 0xFF000000) | Rgb(color);
    }
    // All of them, row by row.
    std::vector<std::uint32_t> Shown() const {
        std::vector<std::uint32_t> words;
        for (std::size_t y = 0; y < height; ++y)
            for (std::size_t x = 0; x < width; ++x)
                words.push_back(Shown(x, y));
        return words;
    }

    FileFacts file;
    std::size_t frame;
    std::uint32_t width = file.Width(frame);
    std::uint32_t height = file.Height(frame);
    unsigned mode = file.Flags(frame) / 8 % 4;
    std::size_t rowBytes = PixelBytes(mode, width, 1);
    bool hasKey = file.Flags(frame) / 32 % 2 == 1;
    std::uint32_t key = file.TransparentKey(frame);
    std::size_t palette = file.PaletteAt(frame);
    std::size_t at = file.PixelsAt(frame);
};

} // namespace vantrel::tests
