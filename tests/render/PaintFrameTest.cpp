#include "render/PaintFrame.h"

#include "tests/codec/LoadFrom.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vantrel::tests {

namespace {

DecodedImage Decoded(const ZmiBuilder& made) {
    MemorySource source(made.Build());
    DecodedImage image;
    EXPECT_TRUE(LoadFrom(source, image));
    return image;
}

} // namespace

TEST(PaintFrame, EqualsOneSetPixelPerPixel) {
    for (unsigned mode = 0; mode < 3; ++mode)
        for (const auto& [width, height] : {std::pair<std::uint16_t, std::uint16_t>{1, 1},
                                            {1, 9},
                                            {2, 8},
                                            {3, 9},
                                            {7, 16},
                                            {8, 7},
                                            {9, 1},
                                            {15, 17},
                                            {33, 23},
                                            {130, 5}}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << ", " << width << " x " << height);
            // Transparency is noted in a file and changes nothing.
            const ZmiBuilder made{
                .mode = mode, .frames = {{4, 4}, {width, height}}, .transparentKey = PatternByte(101, 0)};
            BitmapSurface painted, reference;
            ASSERT_TRUE(PaintFrame(Decoded(made), 1, painted));
            ASSERT_TRUE(reference.Create(width, height, BitmapKind::Dib));
            for (unsigned y = 0; y < height; ++y)
                for (unsigned x = 0; x < width; ++x) {
                    const std::uint32_t word = made.ExpectedPixel(x, y, 1);
                    ASSERT_TRUE(reference.SetPixelAt(static_cast<int>(x), static_cast<int>(y),
                                                     RGB(word >> 16 & 255, word >> 8 & 255, word & 255)));
                }
            GdiFlush();
            ASSERT_EQ(painted.Width(), width);
            ASSERT_EQ(painted.Height(), height);
            EXPECT_EQ(std::memcmp(painted.Bits(), reference.Bits(), std::size_t{width} * height * 4), 0);
        }
}

TEST(PaintFrame, ThrowsForWhatIsNotThere) {
    const struct {
        unsigned mode;
        void (*change)(DecodedImage&);
    } cases[] = {
        {2, [](DecodedImage& image) { image.frames.clear(); }},
        {2, [](DecodedImage& image) { image.framePixels.clear(); }},
        {1, [](DecodedImage& image) { image.palettes.clear(); }},
        {1, [](DecodedImage& image) { image.frames[0].paletteNumber = 2; }},
        {2, [](DecodedImage& image) { image.frames[0].paletteNumber = 1; }},
        {0, [](DecodedImage& image) { image.framePixels[0].pop_back(); }},
        {1, [](DecodedImage& image) { image.framePixels[0].pop_back(); }},
        {2, [](DecodedImage& image) { image.framePixels[0].pop_back(); }},
    };
    for (const auto& [mode, change] : cases) {
        DecodedImage image = Decoded({.mode = mode, .frames = {{5, 9}}});
        change(image);
        BitmapSurface surface;
        EXPECT_THROW(PaintFrame(image, 0, surface), std::out_of_range) << "mode " << mode;
    }
}

TEST(PaintFrame, FramesWithoutASurface) {
    const struct {
        std::uint16_t width, height;
        bool painted;
    } cases[] = {{0, 9, true}, {5, 0, true}, {0, 0, true}, {65535, 65535, false}};
    for (const auto& [width, height, painted] : cases) {
        DecodedImage image = Decoded({.frames = {{5, 9}}});
        image.frames[0].width = width;
        image.frames[0].height = height;
        BitmapSurface surface;
        EXPECT_EQ(PaintFrame(image, 0, surface), painted) << width << " x " << height;
        EXPECT_EQ(surface.Bitmap(), nullptr);
    }
}

} // namespace vantrel::tests
