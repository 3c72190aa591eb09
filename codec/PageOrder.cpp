#include "codec/PageOrder.h"

#include "codec/Sse2.h"
#include "codec/ZmiFormat.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace vantrel {

namespace {

// Flips an 8 x 8 bit matrix along its antidiagonal, swapping blocks of 1, 2 and 4 in turn (H. S. Warren,
// Hacker's Delight, 7-3). With row r in byte 7 - r, leftmost pixel in the highest bit, byte c of the result
// is column c and its bit r row r.
std::uint64_t FlipBits(std::uint64_t rows) {
    std::uint64_t swap = (rows ^ rows << 9) & 0xAA00AA00AA00AA00;
    rows ^= swap ^ swap >> 9;
    swap = (rows ^ rows << 18) & 0xCCCC0000CCCC0000;
    rows ^= swap ^ swap >> 18;
    swap = (rows ^ rows << 36) & 0xF0F0F0F000000000;
    return rows ^ swap ^ swap >> 36;
}

#ifdef VANTREL_SSE2
// The same for sixteen matrices at a time: byte i of vector r is row r of matrix i, and then byte i of vector
// 7 - c is its column c.
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
        vectors[r] = r < rowCount ? Load(rows + r * rowBytes) : _mm_setzero_si128();
    FlipBits(vectors);
    // Bytes of columns 0 to 7 of one matrix after the other.
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
        Store(page, _mm_unpacklo_epi32(fours[0], fours[1]));
        Store(page + 16, _mm_unpackhi_epi32(fours[0], fours[1]));
        Store(page + 32, _mm_unpacklo_epi32(fours[2], fours[3]));
        Store(page + 48, _mm_unpackhi_epi32(fours[2], fours[3]));
    }
}
#endif

// Up to eight rows into one page.
void TransposePage(const std::uint8_t* rows, std::size_t rowBytes, unsigned rowCount, std::uint8_t* page,
                   std::size_t width) {
    std::size_t x = 0;
#ifdef VANTREL_SSE2
    for (; x + 128 <= width; x += 128)
        TransposeStrip(rows + x / 8, rowBytes, rowCount, page + x);
#endif
    for (; x < width; x += 8) {
        std::uint64_t block = 0;
        for (unsigned r = 0; r < rowCount; ++r)
            block |= std::uint64_t{rows[r * rowBytes + x / 8]} << 8 * (7 - r);
        const std::uint64_t columns = FlipBits(block);
        std::memcpy(page + x, &columns, std::min<std::size_t>(8, width - x));
    }
}

} // namespace

void toPageOrder(const std::uint8_t* rowBits, std::uint16_t width, std::uint16_t height,
                 std::uint8_t* pages) {
    const std::size_t rowBytes = RowBytes(PixelMode::Monochrome, width);
    for (unsigned y = 0; y < height; y += 8, rowBits += 8 * rowBytes, pages += width)
        TransposePage(rowBits, rowBytes, std::min(8u, height - y), pages, width);
}

} // namespace vantrel
