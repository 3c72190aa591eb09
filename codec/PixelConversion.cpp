#include "codec/PixelConversion.h"

#include <cstring>

namespace vantrel {

void ExpandPalette(const Palette& palette, std::uint32_t* words) {
    for (std::size_t i = 0; i < 256; ++i)
        words[i] = ExpandRgb565(palette.colours[i]);
}

void ConvertMonochromeRow(const std::uint8_t* page, unsigned bit, std::uint32_t* words, std::size_t width) {
    const auto mask = static_cast<std::uint8_t>(1u << bit);
    for (std::size_t x = 0; x < width; ++x)
        words[x] = (page[x] & mask) != 0 ? 0x00000000u : 0x00FFFFFFu;
}

void ConvertIndexedRow(const std::uint8_t* indices, const std::uint32_t* palette, std::uint32_t* words,
                       std::size_t width) {
    std::size_t x = 0;
    // Four at a time: look-ups don't vectorise, but the stores do.
    for (; x + 4 <= width; x += 4) {
        const std::uint32_t four[] = {palette[indices[x]], palette[indices[x + 1]], palette[indices[x + 2]],
                                      palette[indices[x + 3]]};
        std::memcpy(words + x, four, sizeof four);
    }
    for (; x < width; ++x)
        words[x] = palette[indices[x]];
}

void ConvertRgb565Row(const std::uint8_t* pixels, std::uint32_t* words, std::size_t width) {
    // Stored by halves: so the compiler interleaves vectors of halves instead of widening each.
    auto* const bytes = reinterpret_cast<std::uint8_t*>(words);
    for (std::size_t x = 0; x < width; ++x) {
        std::uint16_t colour;
        std::memcpy(&colour, pixels + 2 * x, sizeof colour);
        const std::uint16_t low = GreenBlueHalf(colour);
        const std::uint16_t high = RedHalf(colour);
        std::memcpy(bytes + 4 * x, &low, sizeof low);
        std::memcpy(bytes + 4 * x + 2, &high, sizeof high);
    }
}

} // namespace vantrel
