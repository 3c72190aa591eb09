#include "codec/PageOrder.h"

#include "codec/Sse2.h"
#include "codec/ZmiFormat.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace vantrel {

namespace {

#ifdef VANTREL_SSE2
// Transposes sixteen 8 x 8 bit matrices at a time, swapping blocks of 4, 2 and 1 in turn (H. S. Warren,
// Hacker's Delight, 7-3): byte i of vector r is row r of matrix i, and then byte i of vector 7 - c is its
// column c.
void FlipBits(__m128i (&vectors)[8]) {
    const auto swap = [&](int distance, char mask) {
        for (int i = 0; i < 8; ++i) {
            if (i & distance)
                continue;
            __m128i& low = vectors[i];
            __m128i& high = vectors[i + distance];
            const __m128i change =
                _mm_and_si128(_mm_xor_si128(_mm_srli_epi16(low, distance), high), _mm_set1_epi8(mask));
            high = _mm_xor_si128(high, change);
            low = _mm_xor_si128(low, _mm_slli_epi16(change, distance));
        }
    };
    swap(4, 0x0F);
    swap(2, 0x33);
    swap(1, 0x55);
}

// 128 columns of up to eight rows.
void TransposeStrip(const std::uint8_t* rows, std::size_t rowBytes, unsigned rowCount, std::uint8_t* page) {
    __m128i vectors[8];
    for (unsigned r = 0; r < 8; ++r)
        vectors[r] = r < rowCount ? LoadVector(rows + r * rowBytes) : _mm_setzero_si128();
    FlipBits(vectors);
    // Columns 0 to 7 of each matrix in turn.
    __m128i pairs[8];
    for (int i = 0; i < 4; ++i) {
        pairs[i] = _mm_unpacklo_epi8(vectors[7 - 2 * i], vectors[6 - 2 * i]);
        pairs[i + 4] = _mm_unpackhi_epi8(vectors[7 - 2 * i], vectors[6 - 2 * i]);
    }
    for (int half = 0; half < 8; half += 4, page += 64) {
        const __m128i fours[] = {_mm_unpacklo_epi16(pairs[half], pairs[half + 1]),
                                 _mm_unpacklo_epi16(pairs[half + 2], pairs[half + 3]),
                                 _mm_unpackhi_epi16(pairs[half], pairs[half + 1]),
                                 _mm_unpackhi_epi16(pairs[half + 2], pairs[half + 3])};
        StoreVector(page, _mm_unpacklo_epi32(fours[0], fours[1]));
        StoreVector(page + 16, _mm_unpackhi_epi32(fours[0], fours[1]));
        StoreVector(page + 32, _mm_unpacklo_epi32(fours[2], fours[3]));
        StoreVector(page + 48, _mm_unpackhi_epi32(fours[2], fours[3]));
    }
}

// Up to eight rows into one page.
void TransposePage(const std::uint8_t* rows, std::size_t rowBytes, unsigned rowCount, std::uint8_t* page,
                   std::size_t width) {
    for (; width >= 128; width -= 128, rows += 16, page += 128)
        TransposeStrip(rows, rowBytes, rowCount, page);
    std::uint8_t rest[8][16] = {}, columns[128];
    for (unsigned r = 0; r < rowCount && width > 0; ++r)
        std::memcpy(rest[r], rows + r * rowBytes, (width + 7) / 8);
    TransposeStrip(rest[0], sizeof rest[0], rowCount, columns);
    std::memcpy(page, columns, width);
}
#else
void TransposePage(const std::uint8_t* rows, std::size_t rowBytes, unsigned rowCount, std::uint8_t* page,
                   std::size_t width) {
    for (std::size_t x = 0; x < width; ++x) {
        unsigned column = 0;
        for (unsigned r = 0; r < rowCount; ++r)
            column |= (rows[r * rowBytes + x / 8] >> (7 - x % 8) & 1u) << r;
        page[x] = static_cast<std::uint8_t>(column);
    }
}
#endif

} // namespace

void toPageOrder(const std::uint8_t* rowBits, std::uint16_t width, std::uint16_t height,
                 std::uint8_t* pages) {
    const std::size_t rowBytes = RowBytes(PixelMode::Monochrome, width);
    for (unsigned y = 0; y < height; y += 8, rowBits += 8 * rowBytes, pages += width)
        TransposePage(rowBits, rowBytes, std::min(8u, height - y), pages, width);
}

} // namespace vantrel
