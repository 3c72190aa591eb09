#include "codec/PageOrder.h"

#include "codec/DecodedImage.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

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

// Eight rows into one band of columns.
void TransposeBand(const std::uint8_t* rows, std::size_t rowBytes, std::uint8_t* page, std::size_t width) {
    for (std::size_t x = 0; x < width; x += 8, ++rows) {
        std::uint64_t block = 0;
        for (unsigned r = 0; r < 8; ++r)
            block |= std::uint64_t{rows[r * rowBytes]} << 8 * (7 - r);
        const std::uint64_t columns = FlipBits(block);
        if (x + 8 <= width)
            std::memcpy(page + x, &columns, 8);
        else
            std::memcpy(page + x, &columns, width - x);
    }
}

} // namespace

ByteBuffer toPageOrder(const ByteBuffer& rowBits, std::uint16_t width, std::uint16_t height) {
    const std::size_t rowBytes = (width + 7u) / 8u;
    if (rowBits.size() < rowBytes * height)
        throw std::out_of_range("invalid vector<T> subscript");

    ByteBuffer pages;
    pages.resize(DecodedByteCount(PixelMode::Monochrome, width, height));
    const std::uint8_t* rows = rowBits.data();
    std::uint8_t* page = pages.data();
    for (unsigned y = 0; y < height; y += 8, rows += 8 * rowBytes, page += width)
        BandToPageOrder(rows, std::min(8u, height - y), width, page);
    return pages;
}

void BandToPageOrder(const std::uint8_t* rows, unsigned rowCount, std::uint16_t width, std::uint8_t* page) {
    const std::size_t rowBytes = (width + 7u) / 8u;
    if (rowCount == 8) {
        TransposeBand(rows, rowBytes, page, width);
        return;
    }
    ByteBuffer padded(8 * rowBytes, std::uint8_t{0});
    std::copy_n(rows, rowCount * rowBytes, padded.data());
    TransposeBand(padded.data(), rowBytes, page, width);
}

} // namespace vantrel
