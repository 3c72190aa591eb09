#include "codec/PageOrder.h"

#include "tests/builder/ZmiBuilder.h"

#include <gtest/gtest.h>

namespace vantrel::tests {

namespace {

// The definition, one bit at a time.
ByteBuffer NaivePages(const ByteBuffer& rows, unsigned width, unsigned height) {
    ByteBuffer pages((height + 7) / 8 * std::size_t{width}, std::uint8_t{0});
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x)
            if (rows[y * ((width + 7) / 8) + x / 8] & 0x80 >> x % 8)
                pages[y / 8 * width + x] = static_cast<std::uint8_t>(pages[y / 8 * width + x] | 1 << y % 8);
    return pages;
}

} // namespace

TEST(PageOrder, EqualsTheDefinitionAtEverySmallSize) {
    for (std::uint16_t width = 0; width <= 35; ++width)
        for (std::uint16_t height = 0; height <= 35; ++height) {
            ByteBuffer rows(PixelBytes(0, width, height));
            for (std::size_t i = 0; i < rows.size(); ++i)
                rows[i] = PatternByte(width * 64u + height, i);
            ASSERT_EQ(toPageOrder(rows, width, height), NaivePages(rows, width, height))
                << width << " x " << height;
        }
}

TEST(PageOrder, KnownPicture) {
    const ByteBuffer rows{0xC0, 0x00, 0x00, 0x40, 0xFF, 0xC0};
    EXPECT_EQ(toPageOrder(rows, 10, 3), (ByteBuffer{5, 5, 4, 4, 4, 4, 4, 4, 4, 6}));
}

TEST(PageOrder, RefusesTooFewRows) {
    EXPECT_THROW(toPageOrder(ByteBuffer(11), 10, 6), std::out_of_range);
}

} // namespace vantrel::tests
