// The conversion of ZMI pixels to 32-bit words 0x00RRGGBB.
#pragma once

#include "codec/ZmiFormat.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace vantrel {

// RGB 5-6-5, red in the high bits. The largest value of a channel becomes 255, any other is shifted up,
// without bit replication: 30 of 31 is 240.
constexpr std::uint32_t ExpandRgb565(std::uint16_t color) {
    const std::uint32_t red = color >> 11;
    const std::uint32_t green = color >> 5 & 63;
    const std::uint32_t blue = color & 31;
    return (red == 31 ? 255 : red * 8) << 16 | (green == 63 ? 255 : green * 4) << 8 |
           (blue == 31 ? 255 : blue * 8);
}

// One word per palette entry.
using PaletteWords = std::array<std::uint32_t, 256>;
PaletteWords ExpandPalette(const Palette& palette);

// Each converts one row of `width` pixels. `page` is the row's band in page order, `bit` the row's place in
// it; a set bit is black.
void ConvertMonochromeRow(const std::uint8_t* page, unsigned bit, std::uint32_t* words, std::size_t width);
void ConvertIndexedRow(const std::uint8_t* indices, const PaletteWords& palette, std::uint32_t* words,
                       std::size_t width);
// `pixels` holds little-endian 16-bit values at any alignment.
void ConvertRgb565Row(const std::uint8_t* pixels, std::uint32_t* words, std::size_t width);

} // namespace vantrel
