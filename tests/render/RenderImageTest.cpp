#include "render/RenderImage.h"

#include "tests/door/Picture.h"
#include "tests/door/ScratchFile.h"
#include "tests/door/TestStream.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

namespace vantrel::tests {

namespace {

// Outputs that nobody has written to.
const HBITMAP noBitmap = reinterpret_cast<HBITMAP>(std::uintptr_t{0xBAD});
const HICON noIcon = reinterpret_cast<HICON>(std::uintptr_t{0xBAD});

// Renders a file from a stream; empty when that fails.
Picture Rendered(const Bytes& file, std::uint32_t width, std::uint32_t height, FitMode fitMode) {
    TestStream stream(file);
    HBITMAP handle = noBitmap;
    if (!RenderImage(
            {.stream = &stream, .bitmap = &handle, .width = width, .height = height, .fitMode = fitMode})) {
        EXPECT_EQ(handle, noBitmap);
        return {};
    }
    EXPECT_NE(handle, nullptr);
    const Bitmap bitmap(handle);
    return ReadPicture(bitmap.get());
}

ZmiBuilder OneColour(std::uint16_t width, std::uint16_t height, std::uint16_t colour) {
    ZmiBuilder file{.mode = 1, .frames = {{width, height}}};
    file.palette.fill(colour);
    return file;
}

constexpr std::uint16_t blue565 = 0x001F, yellow565 = 0xFFE0;
constexpr std::uint32_t blue = 0x0000FF;

constexpr struct {
    std::uint16_t width, height;
    std::uint32_t boxWidth, boxHeight;
    unsigned left, top, fittedWidth, fittedHeight;
} fits[] = {
    {100, 50, 256, 256, 0, 64, 256, 128},
    {30, 10, 32, 32, 0, 11, 32, 10},
    {10, 30, 32, 32, 11, 0, 10, 32},
    {32, 11, 32, 32, 0, 10, 32, 11},
    {7, 3, 20, 9, 0, 0, 20, 8},
    {5, 3, 5, 9, 0, 3, 5, 3},
    {1, 1, 3, 2, 0, 0, 2, 2},
    {65535, 1, 9, 9, 0, 4, 9, 0},
    {1, 300, 9, 9, 4, 0, 0, 9},
    {0, 0, 8, 6, 4, 3, 0, 0},
    {0, 7, 8, 6, 4, 0, 0, 6},
    {7, 0, 8, 6, 0, 3, 8, 0},
};

} // namespace

TEST(RenderImage, Letterboxes) {
    for (const auto& fit : fits) {
        SCOPED_TRACE(testing::Message()
                     << fit.width << " x " << fit.height << " in " << fit.boxWidth << " x " << fit.boxHeight);
        const Picture picture = Rendered(OneColour(fit.width, fit.height, blue565).Build(), fit.boxWidth,
                                         fit.boxHeight, FitMode::Letterbox);
        ASSERT_EQ(picture.width, fit.boxWidth);
        ASSERT_EQ(picture.height, fit.boxHeight);
        for (unsigned y = 0; y < picture.height; ++y)
            for (unsigned x = 0; x < picture.width; ++x) {
                const bool inside =
                    x - fit.left < fit.fittedWidth && y - fit.top < fit.fittedHeight; // unsigned on purpose
                ASSERT_EQ(picture.At(x, y) & 0xFFFFFF, inside ? blue : keyColour) << x << ", " << y;
            }
    }
}

TEST(RenderImage, Fits) {
    for (const auto& fit : fits) {
        SCOPED_TRACE(testing::Message()
                     << fit.width << " x " << fit.height << " in " << fit.boxWidth << " x " << fit.boxHeight);
        const bool shows = fit.fittedWidth > 0 && fit.fittedHeight > 0;
        for (const std::uint16_t colour : {blue565, yellow565}) // the key colour is opaque as well
            EXPECT_EQ(
                Rendered(OneColour(fit.width, fit.height, colour).Build(), fit.boxWidth, fit.boxHeight,
                         FitMode::Fitted),
                shows ? FlatPicture(fit.fittedWidth, fit.fittedHeight, colour == blue565 ? blue : keyColour)
                      : Picture{});
    }
}

TEST(RenderImage, IconsAreOpaqueByTheirMask) {
    TestStream stream(OneColour(3, 9, blue565).Build());
    HICON handle = nullptr;
    ASSERT_TRUE(RenderImage({.stream = &stream, .largeIcon = &handle, .largeSize = 16}));
    const Icon icon(handle);
    ICONINFO info{};
    ASSERT_TRUE(GetIconInfo(icon.get(), &info));
    const Bitmap mask(info.hbmMask), colour(info.hbmColor);
    EXPECT_TRUE(info.fIcon);
    EXPECT_EQ(ReadPicture(mask.get()).words, std::vector<std::uint32_t>(256, 0));
}

TEST(RenderImage, AStreamComesBeforeAPath) {
    const ScratchFile scratch(ZmiBuilder{.frames = {{3, 4}}}.Build());
    TestStream stream(ZmiBuilder{.frames = {{5, 6}}}.Build());
    TestStream garbage(Bytes(500, 'z'));
    const std::wstring missing = std::wstring(scratch.Path()) + L"-missing";
    const struct {
        const wchar_t* path;
        IStream* stream;
        std::uint32_t width; // 0: fails
    } cases[] = {{scratch.Path(), nullptr, 3}, {scratch.Path(), &stream, 5},  {missing.c_str(), &stream, 5},
                 {nullptr, &stream, 5},        {scratch.Path(), &garbage, 0}, {missing.c_str(), nullptr, 0},
                 {nullptr, nullptr, 0}};
    for (const auto& [path, source, width] : cases) {
        std::uint32_t dimensions[2] = {};
        EXPECT_EQ(RenderImage({.path = path, .stream = source, .dimensions = dimensions}), width != 0);
        EXPECT_EQ(dimensions[0], width);
    }
}

TEST(RenderImage, FilesWithoutAFirstFrameThrowWhereItIsNeeded) {
    TestStream stream(ZmiBuilder{.title = "None", .frameTable = true}.Build());
    TextBuffer text;
    EXPECT_TRUE(RenderImage({.stream = &stream, .text = &text}));
    EXPECT_STREQ(text.Buffer(), L"None");
    std::uint32_t dimensions[2];
    EXPECT_THROW(RenderImage({.stream = &stream, .dimensions = dimensions}), std::out_of_range);
    HBITMAP bitmap = noBitmap;
    EXPECT_THROW(RenderImage({.stream = &stream, .bitmap = &bitmap, .width = 8, .height = 8}),
                 std::out_of_range);
    EXPECT_EQ(bitmap, noBitmap);
}

TEST(RenderImage, RefusesImpossibleTargets) {
    const Bytes files[] = {OneColour(9, 5, blue565).Build(), OneColour(0, 0, blue565).Build()};
    for (const Bytes& file : files)
        for (const auto& [width, height] : {std::pair{0u, 0u},
                                            {0u, 8u},
                                            {8u, 0u},
                                            {0xFFFFFFFFu, 0xFFFFFFFFu},
                                            {0xFFFFFFFFu, 1u},
                                            {0x80000000u, 0x80000000u}})
            for (const FitMode fitMode : {FitMode::Letterbox, FitMode::Fitted}) {
                // A wide box of height 1 still takes a picture that keeps its proportions.
                if (height == 1 && fitMode == FitMode::Fitted && file == files[0])
                    continue;
                EXPECT_EQ(Rendered(file, width, height, fitMode), Picture{}) << width << " x " << height;
            }
    EXPECT_EQ(Rendered(files[0], 0xFFFFFFFF, 10, FitMode::Fitted), FlatPicture(18, 10, blue));

    for (const std::uint32_t size : {0u, 0xFFFFFFFFu}) {
        TestStream stream(files[0]);
        HICON large = noIcon, small = noIcon;
        EXPECT_FALSE(RenderImage({.stream = &stream,
                                  .largeIcon = &large,
                                  .largeSize = 16,
                                  .smallIcon = &small,
                                  .smallSize = size}));
        EXPECT_NE(large, noIcon) << "made before the failure, and the caller's";
        EXPECT_EQ(small, noIcon);
        EXPECT_TRUE(DestroyIcon(large));
    }
}

} // namespace vantrel::tests
