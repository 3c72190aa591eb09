// The conversion of ZMI pixels to 32-bit words 0x00RRGGBB.
#pragma once

#include "codec/ZmiFormat.h"

#include <cstddef>
#include <cstdint>

namespace vantrel {

// The halves of a word, each made in 16 bits throughout, so that eight pixels fit into a vector.
constexpr std::uint16_t BitsIf(bool condition, std::uint16_t bits) {
    return static_cast<std::uint16_t>(-static_cast<int>(condition) & bits);
}
constexpr std::uint16_t RedHalf(std::uint16_t colour) {
    const std::uint16_t red = colour & 0xF800;
    return static_cast<std::uint16_t>(red >> 8 | BitsIf(red == 0xF800, 0x0007));
}
constexpr std::uint16_t GreenBlueHalf(std::uint16_t colour) {
    const std::uint16_t green = colour & 0x07E0;
    const std::uint16_t blue = colour & 0x001F;
    return static_cast<std::uint16_t>(green << 5 | BitsIf(green == 0x07E0, 0x0300) | blue << 3 |
                                      BitsIf(blue == 0x001F, 0x0007));
}

// RGB 5-6-5, red in the high bits. The largest value of a channel becomes 255, any other is shifted up,
// without bit replication: 30 of 31 is 240.
constexpr std::uint32_t ExpandRgb565(std::uint16_t colour) {
    return std::uint32_t{RedHalf(colour)} << 16 | GreenBlueHalf(colour);
}

// 256 words, one per palette entry.
void ExpandPalette(const Palette& palette, std::uint32_t* words);

// Each converts one row of `width` pixels. `page` is the row's band in page order, `bit` the row's place in
// it; a set bit is black.
void ConvertMonochromeRow(const std::uint8_t* page, unsigned bit, std::uint32_t* words, std::size_t width);
void ConvertIndexedRow(const std::uint8_t* indices, const std::uint32_t* palette, std::uint32_t* words,
                       std::size_t width);
// `pixels` holds little-endian 16-bit values at any alignment.
void ConvertRgb565Row(const std::uint8_t* pixels, std::uint32_t* words, std::size_t width);

} // namespace vantrel
