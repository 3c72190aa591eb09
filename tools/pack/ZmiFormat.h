// The ZMI file format as it lies on disk: packed, little-endian structures and their fixed values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace vantrel::tools::zmi {

// The value that the pixel mode has in bits 3 and 4 of a flags byte.
enum class PixelMode : std::uint8_t { Mono = 0, Indexed = 1, Rgb565 = 2 };

constexpr std::uint8_t flagFrameTable = 1;
constexpr std::uint8_t flagTransparency = 1U << 5;
constexpr std::uint8_t flagBlankDefault = 1U << 7;
constexpr unsigned pixelModeShift = 3;

constexpr std::array<char, 9> magic = {'z', 'p', 'i', 'x', '-', 'z', 'm', 'i', '\0'};
constexpr std::array<char, 4> trailer = {'z', 'p', 'i', 'x'};
constexpr std::size_t longestTitle = 33; // bytes, beside the zero byte that ends it
constexpr std::size_t colorTableEntries = 256;
constexpr std::uint16_t blankWidth = 1024;
constexpr std::uint16_t blankHeight = 600;

#pragma pack(push, 1)

struct FileHeader {
    std::array<char, 9> magic;
    std::uint32_t version;
    std::uint32_t headerSize;
    std::uint8_t kind;
    std::uint32_t dataOffset;
    std::uint32_t dataSize;
    std::array<std::uint8_t, 86> unused;
};

struct ImageHeader {
    std::array<char, longestTitle + 1> text;
    std::uint32_t pixelOffset;
    std::uint32_t paletteOffset;
    std::uint32_t unused;
    std::uint32_t transparentKey;
    std::uint8_t flags;
    std::uint16_t width;
    std::uint16_t height;
};

struct FrameTable {
    std::uint32_t tableWord;
    std::uint16_t frameCount;
    std::uint16_t tableExtra;
};

struct FrameRecord {
    std::uint32_t frameDataOffset;
    std::uint32_t paletteNumber;
    std::uint32_t extra0;
    std::uint32_t transparentKey;
    std::uint8_t flags;
    std::uint16_t width;
    std::uint16_t height;
    std::array<std::uint16_t, 3> extra;
};

#pragma pack(pop)

static_assert(sizeof(FileHeader) == 112);
static_assert(offsetof(FileHeader, version) == 9);
static_assert(offsetof(FileHeader, headerSize) == 13);
static_assert(offsetof(FileHeader, kind) == 17);
static_assert(offsetof(FileHeader, dataOffset) == 18);
static_assert(offsetof(FileHeader, dataSize) == 22);

static_assert(sizeof(ImageHeader) == 55);
static_assert(offsetof(ImageHeader, pixelOffset) == 34);
static_assert(offsetof(ImageHeader, paletteOffset) == 38);
static_assert(offsetof(ImageHeader, transparentKey) == 46);
static_assert(offsetof(ImageHeader, flags) == 50);
static_assert(offsetof(ImageHeader, width) == 51);
static_assert(offsetof(ImageHeader, height) == 53);

static_assert(sizeof(FrameTable) == 8);
static_assert(offsetof(FrameTable, frameCount) == 4);

static_assert(sizeof(FrameRecord) == 27);
static_assert(offsetof(FrameRecord, paletteNumber) == 4);
static_assert(offsetof(FrameRecord, transparentKey) == 12);
static_assert(offsetof(FrameRecord, flags) == 16);
static_assert(offsetof(FrameRecord, width) == 17);
static_assert(offsetof(FrameRecord, height) == 19);

} // namespace vantrel::tools::zmi
