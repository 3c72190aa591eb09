#include "render/RenderImage.h"

#include "render/PaintFrame.h"
#include "tests/builder/MemorySource.h"
#include "tests/door/ScratchFile.h"
#include "tests/door/TestStream.h"

#include <cstring>

namespace vantrel::tests {

TEST(PaintFrame, EqualsOneSetPixelPerPixel) {
    for (unsigned mode = 0; mode < 3; ++mode)
        for (const auto& [width, height] : {std::pair<std::uint16_t, std::uint16_t>{1, 1},
                                            {1, 9},
                                            {2, 8},
                                            {3, 9},
                                            {8, 7},
                                            {9, 1},
                                            {15, 17},
                                            {33, 23},
                                            {130, 5}}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << ", " << width << " x " << height);
            // Transparency is noted in a file and changes nothing.
            const ZmiBuilder made{
                .mode = mode, .frames = {{width, height}, {4, 4}}, .transparentKey = PatternByte(100, 0)};
            MemorySource source(made.Build());
            BitmapSurface painted, reference;
            DecodedImage image;
            ASSERT_TRUE(
                LoadFrom(source, image, Keep::Facts, [&](const DecodedImage& decoded, FramePixels& pixels) {
                    return PaintFrame(decoded, 0, pixels, painted);
                }));
            ASSERT_TRUE(reference.Create(width, height, BitmapKind::Dib));
            for (unsigned y = 0; y < height; ++y)
                for (unsigned x = 0; x < width; ++x) {
                    const std::uint32_t word = made.ExpectedPixel(x, y);
                    ASSERT_TRUE(reference.SetPixelAt(static_cast<int>(x), static_cast<int>(y),
                                                     RGB(word >> 16 & 255, word >> 8 & 255, word & 255)));
                }
            GdiFlush();
            ASSERT_EQ(painted.Width(), width);
            ASSERT_EQ(painted.Height(), height);
            EXPECT_EQ(std::memcmp(painted.Bits(), reference.Bits(), std::size_t{width} * height * 4), 0);
        }
}

// No handler names both.
TEST(RenderImage, AStreamComesBeforeAPath) {
    const ScratchFile scratch(ZmiBuilder{.frames = {{3, 4}}}.Build());
    TestStream stream(ZmiBuilder{.frames = {{5, 6}}}.Build());
    TestStream garbage(Bytes(500, 'z'));
    std::uint32_t dimensions[2] = {};
    EXPECT_TRUE(RenderImage({.path = scratch.Path(), .stream = &stream, .dimensions = dimensions}));
    EXPECT_EQ(dimensions[0], 5u);
    EXPECT_FALSE(RenderImage({.path = scratch.Path(), .stream = &garbage, .dimensions = dimensions}));
    EXPECT_FALSE(RenderImage({.dimensions = dimensions}));
}

} // namespace vantrel::tests
