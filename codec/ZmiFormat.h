// The ZMI file format: its packed structures, fixed numbers and pixel modes. docs/zmi-format.md describes
// them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace vantrel {

// The structures below are read by memcpy from little-endian files into little-endian memory.
#pragma pack(push, 1)

// The 112 bytes at the start of a file.
struct FileHeader {
    char magic[9];
    std::uint32_t version;
    std::uint32_t headerSize;
    std::uint8_t kind;
    std::uint32_t dataOffset; // file offset of the payload
    std::uint32_t dataSize;   // payload length in bytes
    std::uint8_t reserved[86];
};

// The 55 bytes at the start of the payload. Offsets in it count from the start of the file.
struct ImageHeader {
    char text[34];
    std::uint32_t pixelOffset;   // pixel data or frame table; 0: no picture
    std::uint32_t paletteOffset; // mode 1: the first colour table; 1 once that table is loaded
    std::uint32_t extra;
    std::uint32_t transparentKey;
    std::uint8_t flags;
    std::uint16_t width;
    std::uint16_t height;
};

struct FrameTableHeader {
    std::uint32_t tableWord;
    std::uint16_t frameCount;
    std::uint16_t tableExtra;
};

struct FrameRecord {
    std::uint32_t frameDataOffset;
    std::uint32_t
        paletteNumber; // in a file: offset of a colour table; decoded: 1-based number of one, 0 = none
    std::uint32_t extra0;
    std::uint32_t transparentKey;
    std::uint8_t flags;
    std::uint16_t width;
    std::uint16_t height;
    std::uint16_t extra1;
    std::uint16_t extra2;
    std::uint16_t extra3;
};

// 256 colours in RGB 5-6-5.
struct Palette {
    std::uint16_t colors[256];
};

#pragma pack(pop)

static_assert(sizeof(FileHeader) == 112);
static_assert(offsetof(FileHeader, version) == 9);
static_assert(offsetof(FileHeader, headerSize) == 13);
static_assert(offsetof(FileHeader, kind) == 17);
static_assert(offsetof(FileHeader, dataOffset) == 18);
static_assert(offsetof(FileHeader, dataSize) == 22);
static_assert(offsetof(FileHeader, reserved) == 26);

static_assert(sizeof(ImageHeader) == 55);
static_assert(offsetof(ImageHeader, pixelOffset) == 34);
static_assert(offsetof(ImageHeader, paletteOffset) == 38);
static_assert(offsetof(ImageHeader, extra) == 42);
static_assert(offsetof(ImageHeader, transparentKey) == 46);
static_assert(offsetof(ImageHeader, flags) == 50);
static_assert(offsetof(ImageHeader, width) == 51);
static_assert(offsetof(ImageHeader, height) == 53);

static_assert(sizeof(FrameTableHeader) == 8);
static_assert(offsetof(FrameTableHeader, frameCount) == 4);
static_assert(offsetof(FrameTableHeader, tableExtra) == 6);

static_assert(sizeof(FrameRecord) == 27);
static_assert(offsetof(FrameRecord, paletteNumber) == 4);
static_assert(offsetof(FrameRecord, extra0) == 8);
static_assert(offsetof(FrameRecord, transparentKey) == 12);
static_assert(offsetof(FrameRecord, flags) == 16);
static_assert(offsetof(FrameRecord, width) == 17);
static_assert(offsetof(FrameRecord, height) == 19);
static_assert(offsetof(FrameRecord, extra1) == 21);
static_assert(offsetof(FrameRecord, extra2) == 23);
static_assert(offsetof(FrameRecord, extra3) == 25);

static_assert(sizeof(Palette) == 512);

inline constexpr char zmiMagic[9] = {'z', 'p', 'i', 'x', '-', 'z', 'm', 'i', '\0'};
inline constexpr char zmiTrailer[4] = {'z', 'p', 'i', 'x'};
inline constexpr std::uint32_t zmiVersion = 1;
inline constexpr std::uint8_t zmiPictureKind = 1;

// Bits 3 and 4 of a flags byte.
enum class PixelMode : std::uint8_t {
    Monochrome = 0, // 1 bit per pixel, rows of whole bytes, most significant bit leftmost
    Indexed = 1,    // 1 byte per pixel into a Palette
    Rgb565 = 2,     // 2 bytes per pixel
    Reserved = 3,   // 1 byte per pixel without a palette; decoded, never painted
};

inline constexpr std::uint8_t frameTableFlag = 0x01;
inline constexpr std::uint8_t transparencyFlag = 0x20;
inline constexpr std::uint8_t blankDefaultFlag = 0x80;

inline constexpr std::uint16_t blankDefaultWidth = 1024;
inline constexpr std::uint16_t blankDefaultHeight = 600;

constexpr PixelMode ModeOf(std::uint8_t flags) {
    return static_cast<PixelMode>(flags >> 3 & 3);
}

// Bytes of a row of pixels in a file of the given mode.
constexpr std::uint32_t RowBytes(PixelMode mode, std::uint16_t width) {
    switch (mode) {
    case PixelMode::Monochrome:
        return (width + 7u) / 8u;
    case PixelMode::Rgb565:
        return width * 2u;
    default:
        return width;
    }
}

// The same for a whole frame.
constexpr std::uint64_t PixelByteCount(PixelMode mode, std::uint16_t width, std::uint16_t height) {
    return std::uint64_t{height} * RowBytes(mode, width);
}

// The only frame of a file without a frame table, as a record; blank if the file has no picture.
constexpr FrameRecord SingleFrame(const ImageHeader& header) {
    FrameRecord frame{};
    if (header.pixelOffset == 0) {
        frame.width = blankDefaultWidth;
        frame.height = blankDefaultHeight;
        return frame;
    }
    frame.frameDataOffset = header.pixelOffset;
    frame.transparentKey = header.transparentKey;
    frame.flags = header.flags;
    frame.width = header.width;
    frame.height = header.height;
    return frame;
}

// The value of the frame's transparent pixels: an index or a 5-6-5 colour. None in the other modes, which
// have no such pixels, and for a key that is no pixel's value.
constexpr std::optional<std::uint32_t> TransparentKey(const FrameRecord& frame) {
    const PixelMode mode = ModeOf(frame.flags);
    const std::uint32_t key = frame.transparentKey;
    const std::uint32_t end = mode == PixelMode::Indexed ? 0x100 : mode == PixelMode::Rgb565 ? 0x10000 : 0;
    return (frame.flags & transparencyFlag) != 0 && key < end ? std::optional(key) : std::nullopt;
}

} // namespace vantrel
