#include "codec/PixelConversion.h"

#include <cstring>

namespace vantrel {

void ExpandPalette(const Palette& palette, std::uint32_t* words) {
    for (std::size_t i = 0; i < 256; ++i)
        words[i] = ExpandRgb565(palette.colours[i]);
}

void ConvertMonochromeRow(const std::uint8_t* page, unsigned bit, std::uint32_t* words, std::size_t width) {
    for (std::size_t x = 0; x < width; ++x)
        words[x] = ((page[x] >> bit & 1u) - 1u) & 0x00FFFFFFu;
}

void ConvertIndexedRow(const std::uint8_t* indices, const std::uint32_t* palette, std::uint32_t* words,
                       std::size_t width) {
    for (std::size_t x = 0; x < width; ++x)
        words[x] = palette[indices[x]];
}

void ConvertRgb565Row(const std::uint8_t* pixels, std::uint32_t* words, std::size_t width) {
    for (std::size_t x = 0; x < width; ++x) {
        std::uint16_t colour;
        std::memcpy(&colour, pixels + 2 * x, sizeof colour);
        words[x] = ExpandRgb565(colour);
    }
}

} // namespace vantrel
