// Builds ZMI files for tests; shares nothing with the decoder.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::tests {

using Bytes = std::vector<std::uint8_t>;
using Colors = std::array<std::uint16_t, 256>;

// A little-endian number at an offset inside a structure.
struct Field {
    std::size_t offset;
    std::size_t width;
};

namespace file_header {
inline constexpr std::size_t size = 112;
inline constexpr Field version{9, 4}, headerSize{13, 4}, kind{17, 1}, dataOffset{18, 4}, dataSize{22, 4};
} // namespace file_header
namespace image_header {
inline constexpr std::size_t size = 55;
inline constexpr Field pixelOffset{34, 4}, paletteOffset{38, 4}, extra{42, 4}, transparentKey{46, 4},
    flags{50, 1}, width{51, 2}, height{53, 2};
} // namespace image_header
namespace frame_table {
inline constexpr std::size_t size = 8;
inline constexpr Field tableWord{0, 4}, frameCount{4, 2}, tableExtra{6, 2};
} // namespace frame_table
namespace frame_record {
inline constexpr std::size_t size = 27;
inline constexpr Field dataOffset{0, 4}, paletteOffset{4, 4}, extra0{8, 4}, transparentKey{12, 4},
    flags{16, 1}, width{17, 2}, height{19, 2};
} // namespace frame_record

// `base` is the offset of the structure.
std::uint32_t GetField(const Bytes& bytes, std::size_t base, Field field);
void SetField(Bytes& bytes, std::size_t base, Field field, std::uint32_t value);

// Makes the file header and the last four bytes, the trailer, describe a payload that starts there.
void FramePayload(Bytes& file, std::uint32_t payloadAt);

// Number i of a fixed pseudo-random sequence.
std::uint8_t PatternByte(std::uint32_t seed, std::size_t i);
Colors PatternColors(std::uint32_t seed);

// The bytes of a frame's pixels in a file of that mode.
std::size_t PixelBytes(unsigned mode, std::uint32_t width, std::uint32_t height);

// A 5-6-5 colour as displayed, 0x00RRGGBB.
std::uint32_t Rgb(std::uint32_t color565);

struct ZmiFrame {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::optional<Bytes> pixels{};       // as in the file; default: a pattern
    std::optional<Colors> palette{};     // mode 1: its own table instead of the file's
    std::optional<std::uint8_t> flags{}; // instead of the file's
    std::uint32_t transparentKey = 0;
};

// Describe the file, then call Build. Bytes that no reader interprets are filled with a pattern.
struct ZmiBuilder {
    unsigned mode = 2;
    std::vector<ZmiFrame> frames{}; // empty: the blank default without a frame table, an empty table with one
    std::string title{};            // cut off at 34 bytes
    bool frameTable = false;        // more than one frame always implies one
    Colors palette = PatternColors(0);
    std::optional<std::uint32_t> transparentKey{};
    std::size_t gap = 0;      // bytes between the file header and the payload
    bool sharePixels = false; // every record names the first frame's pixels
    std::size_t rest = 0;     // payload bytes behind the last pixels that nothing refers to
    Bytes behindTrailer{};

    Bytes Build() const;

    // Offsets in the built file.
    std::size_t PayloadAt() const { return file_header::size + gap; }
    std::size_t PaletteAt() const { return PayloadAt() + image_header::size; }
    std::size_t FrameTableAt() const { return PaletteAt() + (mode == 1 ? sizeof(Colors) : 0); }
    std::size_t RecordAt(std::size_t frame) const {
        return FrameTableAt() + frame_table::size + frame * frame_record::size;
    }
    bool HasFrameTable() const { return frameTable || frames.size() > 1; }

private:
    std::uint8_t Flags() const;
};

} // namespace vantrel::tests
