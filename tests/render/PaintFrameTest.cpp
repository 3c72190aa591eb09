#include "render/PaintFrame.h"

#include "codec/PixelConversion.h"
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

TEST(PaintFrame, TakesTheFramesOwnModeAndPalette) {
    // What each of these frames is painted as, in a file of another kind.
    ZmiBuilder made{.mode = 3, .frames = {{8, 8}}, .frameTable = true};
    made.frames[0].flags = 0;
    DecodedImage image = Decoded(made);
    BitmapSurface surface;
    ASSERT_TRUE(PaintFrame(image, 0, surface));
    for (unsigned i = 0; i < 64; ++i) // pages, though nothing has put them in order
        ASSERT_EQ(surface.Bits()[(7 - i / 8) * 8 + i % 8],
                  image.framePixels[0][i % 8] >> i / 8 & 1 ? 0x000000u : 0xFFFFFFu);

    made = {.mode = 1, .frames = {{2, 1}, {2, 1, Bytes{0, 255}, PatternColours(7)}, {2, 1, Bytes{0, 255}}}};
    image = Decoded(made);
    for (const auto& [number, table] : {std::pair{0u, 0u}, {1u, 0u}, {2u, 1u}}) {
        image.frames[2].paletteNumber = number;
        ASSERT_TRUE(PaintFrame(image, 2, surface));
        EXPECT_EQ(surface.Bits()[1], ExpandRgb565(image.palettes[table].colours[255])) << number;
    }
}

TEST(PaintFrame, RefusesWhatItCannotPaint) {
    struct Outcome {
        bool throws, result, surface;
    };
    const struct {
        const char* name;
        unsigned mode;
        void (*change)(DecodedImage&);
        Outcome outcome;
    } cases[] = {
        {"reserved mode", 3, [](DecodedImage&) {}, {false, false, false}},
        {"no such frame", 2, [](DecodedImage& image) { image.frames.clear(); }, {true, false, false}},
        {"no pixels", 2, [](DecodedImage& image) { image.framePixels.clear(); }, {true, false, false}},
        {"no palette", 1, [](DecodedImage& image) { image.palettes.clear(); }, {true, false, false}},
        {"number beyond",
         1,
         [](DecodedImage& image) { image.frames[0].paletteNumber = 2; },
         {true, false, false}},
        {"number in mode 2",
         2,
         [](DecodedImage& image) { image.frames[0].paletteNumber = 1; },
         {true, false, false}},
        {"one byte short",
         2,
         [](DecodedImage& image) { image.framePixels[0].pop_back(); },
         {true, false, true}},
        {"one page short",
         0,
         [](DecodedImage& image) { image.framePixels[0].pop_back(); },
         {true, false, true}},
        {"too large",
         2,
         [](DecodedImage& image) { image.frames[0].width = image.frames[0].height = 65535; },
         {false, false, false}},
        {"no width", 2, [](DecodedImage& image) { image.frames[0].width = 0; }, {false, true, false}},
        {"no height", 2, [](DecodedImage& image) { image.frames[0].height = 0; }, {false, true, false}},
        {"no width or pixels",
         1,
         [](DecodedImage& image) {
             image.frames[0].width = 0;
             image.framePixels[0].clear();
         },
         {false, true, false}},
    };
    for (const auto& [name, mode, change, outcome] : cases) {
        SCOPED_TRACE(name);
        DecodedImage image = Decoded({.mode = mode, .frames = {{5, 9}}});
        change(image);
        BitmapSurface surface;
        if (outcome.throws)
            EXPECT_THROW(PaintFrame(image, 0, surface), std::out_of_range);
        else
            EXPECT_EQ(PaintFrame(image, 0, surface), outcome.result);
        EXPECT_EQ(surface.Bits() != nullptr, outcome.surface);
    }
}

} // namespace vantrel::tests
