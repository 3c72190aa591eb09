#include "codec/PixelConversion.h"

#include "tests/builder/ZmiBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vantrel::tests {

// Every colour, and rows of every length around a vector's length.
TEST(PixelConversion, ExpandsEveryColorAtEveryWidth) {
    std::vector<std::uint8_t> pixels;
    std::vector<std::uint32_t> expected;
    for (unsigned color = 0; color < 0x10000; ++color) {
        pixels.push_back(static_cast<std::uint8_t>(color));
        pixels.push_back(static_cast<std::uint8_t>(color >> 8));
        expected.push_back(Rgb(color));
    }
    for (std::size_t begin = 0, width = 0; begin + width <= expected.size(); begin += width, ++width) {
        std::vector<std::uint32_t> words(width + 1, 0xDEADBEEF);
        ConvertRgb565Row(pixels.data() + 2 * begin, words.data(), width);
        EXPECT_TRUE(std::equal(words.begin(), words.end() - 1, expected.data() + begin)) << width;
        EXPECT_EQ(words.back(), 0xDEADBEEF) << width;
    }
    std::vector<std::uint32_t> all(expected.size());
    ConvertRgb565Row(pixels.data(), all.data(), all.size());
    EXPECT_EQ(all, expected);
}

} // namespace vantrel::tests
