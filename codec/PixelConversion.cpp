#include "codec/PixelConversion.h"

#include "codec/Sse2.h"

#include <cstring>

namespace vantrel {

PaletteWords ExpandPalette(const Palette& palette) {
    PaletteWords words;
    for (std::size_t i = 0; i < words.size(); ++i)
        words[i] = ExpandRgb565(palette.colors[i]);
    return words;
}

void ConvertMonochromeRow(const std::uint8_t* page, unsigned bit, std::uint32_t* words, std::size_t width) {
    const auto mask = static_cast<std::uint8_t>(1u << bit);
    std::size_t x = 0;
#ifdef VANTREL_SSE2 // for plain loops GCC emits a quarter to a half more instructions
    const __m128i masks = _mm_set1_epi8(static_cast<char>(mask));
    const __m128i zero = _mm_setzero_si128();
    for (; x + 16 <= width; x += 16) {
        const __m128i bits = _mm_and_si128(LoadVector(page + x), masks);
        const __m128i white = _mm_cmpeq_epi8(bits, zero);
        // Each byte of the mask becomes blue, green and red of a word; alpha is 0.
        const __m128i blueGreen0 = _mm_unpacklo_epi8(white, white);
        const __m128i blueGreen8 = _mm_unpackhi_epi8(white, white);
        const __m128i red0 = _mm_unpacklo_epi8(white, zero);
        const __m128i red8 = _mm_unpackhi_epi8(white, zero);
        StoreVector(words + x, _mm_unpacklo_epi16(blueGreen0, red0));
        StoreVector(words + x + 4, _mm_unpackhi_epi16(blueGreen0, red0));
        StoreVector(words + x + 8, _mm_unpacklo_epi16(blueGreen8, red8));
        StoreVector(words + x + 12, _mm_unpackhi_epi16(blueGreen8, red8));
    }
#endif
    for (; x < width; ++x)
        words[x] = (page[x] & mask) != 0 ? 0x00000000u : 0x00FFFFFFu;
}

void ConvertIndexedRow(const std::uint8_t* indices, const PaletteWords& palette, std::uint32_t* words,
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
    std::size_t x = 0;
#ifdef VANTREL_SSE2
    // Words are assembled from 16-bit halves; in fields at their maximum the bits below are set, too.
    const __m128i fullGreenBlue = _mm_set1_epi16(static_cast<short>(0xFCF8));
    const __m128i restGreenBlue = _mm_set1_epi16(0x0307);
    const __m128i greens = _mm_set1_epi16(static_cast<short>(0xFC00));
    const __m128i fullRed = _mm_set1_epi16(0x00F8);
    const __m128i restRed = _mm_set1_epi16(0x0007);
    for (; x + 8 <= width; x += 8) {
        const __m128i colors = LoadVector(pixels + 2 * x);
        __m128i greenBlue = _mm_or_si128(_mm_and_si128(_mm_slli_epi16(colors, 5), greens),
                                         _mm_and_si128(_mm_slli_epi16(colors, 3), fullRed));
        greenBlue =
            _mm_or_si128(greenBlue, _mm_and_si128(_mm_cmpeq_epi8(greenBlue, fullGreenBlue), restGreenBlue));
        __m128i red = _mm_and_si128(_mm_srli_epi16(colors, 8), fullRed);
        red = _mm_or_si128(red, _mm_and_si128(_mm_cmpeq_epi8(red, fullRed), restRed));
        StoreVector(words + x, _mm_unpacklo_epi16(greenBlue, red));
        StoreVector(words + x + 4, _mm_unpackhi_epi16(greenBlue, red));
    }
#endif
    for (; x < width; ++x) {
        std::uint16_t color;
        std::memcpy(&color, pixels + 2 * x, sizeof color);
        words[x] = ExpandRgb565(color);
    }
}

} // namespace vantrel
