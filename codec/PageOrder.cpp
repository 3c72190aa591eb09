#include "codec/PageOrder.h"

#include "codec/ZmiFormat.h"

#include <cstddef>
#include <cstring>
#include <type_traits>

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

// Up to eight rows into one page; faster with a count that the compiler knows.
template <class Count>
void TransposePage(const std::uint8_t* rows, std::size_t rowBytes, Count rowCount, std::uint8_t* page,
                   std::size_t width) {
    for (std::size_t x = 0; x < width; x += 8, ++rows) {
        std::uint64_t block = 0;
        for (unsigned r = 0; r < rowCount; ++r)
            block |= std::uint64_t{rows[r * rowBytes]} << 8 * (7 - r);
        const std::uint64_t columns = FlipBits(block);
        if (x + 8 <= width)
            std::memcpy(page + x, &columns, 8);
        else
            std::memcpy(page + x, &columns, width - x);
    }
}

} // namespace

void toPageOrder(const std::uint8_t* rowBits, std::uint16_t width, std::uint16_t height,
                 std::uint8_t* pages) {
    const std::size_t rowBytes = RowBytes(PixelMode::Monochrome, width);
    unsigned left = height;
    for (; left >= 8; left -= 8, rowBits += 8 * rowBytes, pages += width)
        TransposePage(rowBits, rowBytes, std::integral_constant<unsigned, 8>(), pages, width);
    if (left > 0)
        TransposePage(rowBits, rowBytes, left, pages, width);
}

} // namespace vantrel
