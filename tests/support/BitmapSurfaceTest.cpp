#include "support/BitmapSurface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace vantrel::tests {

namespace {

constexpr COLORREF key = RGB(255, 128, 0);
constexpr std::uint32_t keyWord = 0xFF8000;

// A DIB surface, black with alpha 0x55, which no operation produces.
struct TestSurface : BitmapSurface {
    TestSurface(unsigned width, unsigned height) {
        EXPECT_TRUE(Create(width, height, BitmapKind::Dib));
        std::fill_n(Bits(), std::size_t{width} * height, 0x55000000u);
    }
    // Counted from the top.
    std::uint32_t& At(int x, int y) {
        GdiFlush();
        return Bits()[(Height() - 1 - y) * Width() + x];
    }
};

} // namespace

TEST(BitmapSurface, FillTakesEdges) {
    const struct {
        RECT edges, filled;
    } cases[] = {{{0, 0, 0, 0}, {0, 0, 8, 9}}, {{0, 0, 5, 0}, {0, 0, 0, 0}}, {{3, -5, 9, 7}, {3, 0, 8, 7}}};
    for (const auto& [edges, filled] : cases) {
        TestSurface surface(8, 9);
        EXPECT_TRUE(surface.Fill(RGB(1, 2, 3), edges.left, edges.top, edges.right, edges.bottom));
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(surface.At(x, y) & 0xFFFFFF, PtInRect(&filled, {x, y}) ? 0x010203u : 0)
                    << x << ", " << y;
    }
}

TEST(BitmapSurface, StretchTakesTheDestinationsSizeForZero) {
    TestSurface source(4, 4);
    for (int i = 0; i < 16; ++i)
        source.At(i % 4, i / 4) = static_cast<std::uint32_t>(i + 1) * 0x100804;
    const RECT drawn{2, 3, 4, 5};
    for (const int size : {0, 2}) {
        TestSurface target(5, 6);
        ASSERT_TRUE(target.StretchFrom(source.Dc(), 2, 3, 2, 2, 1, 2, size, size));
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 5; ++x)
                EXPECT_EQ(target.At(x, y) & 0xFFFFFF, PtInRect(&drawn, {x, y}) ? source.At(x - 1, y - 1) : 0);
    }
    EXPECT_FALSE(BitmapSurface().StretchFrom(source.Dc(), 0, 0, 1, 1, 0, 0, 1, 1));
}

TEST(BitmapSurface, AlphaPassCountsRowsFromTheBottom) {
    const struct {
        std::uint32_t x, y, width, height;
        std::string opaque; // pixels of the key colour, from the top left: x marks those that stay visible
    } cases[] = {{0, 0, 4, 1, "........xxxx"},
                 {1, 1, 2, 2, ".xx..xx....."},
                 {2, 1, 0xFFFFFFFF, 0xFFFFFFFF, "..xx..xx...."},
                 {0xFFFFFFFF, 0, 9, 3, "............"}};
    for (const auto& [x, y, width, height, opaque] : cases)
        for (const std::uint32_t color : {keyWord, keyWord + 1, 0x0080FFu}) {
            TestSurface surface(4, 3);
            std::fill_n(surface.Bits(), 12, 0x55000000 | color);
            surface.SetAlphaOutside(key, x, y, width, height);
            for (int i = 0; i < 12; ++i) {
                const bool clear = color == keyWord && opaque.at(static_cast<std::size_t>(i)) == '.';
                EXPECT_EQ(surface.At(i % 4, i / 4), (clear ? 0 : 0xFF000000) | color) << opaque << ", " << i;
            }
        }
}

TEST(BitmapSurface, CreateReplacesTheBitmapAndKeepsTheContext) {
    TestSurface surface(4, 3);
    const HDC dc = surface.Dc();
    const HBITMAP first = surface.Bitmap();
    for (const BitmapKind kind : {BitmapKind::Compatible, BitmapKind::Dib}) {
        ASSERT_TRUE(surface.Create(7, 2, kind));
        EXPECT_EQ(surface.Dc(), dc);
        EXPECT_EQ(GetCurrentObject(dc, OBJ_BITMAP), surface.Bitmap());
        EXPECT_EQ(GetObjectType(first), 0u) << "still alive";
        EXPECT_EQ(surface.Bits() != nullptr, kind == BitmapKind::Dib);
        BITMAP facts{};
        GetObjectW(surface.Bitmap(), sizeof facts, &facts);
        EXPECT_EQ(facts.bmWidth, 7);
        EXPECT_EQ(facts.bmHeight, 2);
    }
}

TEST(BitmapSurface, DetachGivesTheBitmapAwayWithItsPixels) {
    TestSurface surface(7, 2);
    const HDC dc = surface.Dc();
    EXPECT_TRUE(surface.SetPixelAt(1, 0, RGB(0, 0, 42)));
    const UniqueBitmap bitmap = surface.Detach();
    EXPECT_EQ(surface.Bitmap(), nullptr);
    EXPECT_EQ(surface.Bits(), nullptr);
    EXPECT_NE(GetCurrentObject(dc, OBJ_BITMAP), bitmap.get());
    ASSERT_TRUE(surface.Create(9, 9, BitmapKind::Dib));
    DIBSECTION section{};
    ASSERT_EQ(GetObjectW(bitmap.get(), sizeof section, &section), int{sizeof section});
    EXPECT_EQ(section.dsBmih.biBitCount, 32);
    EXPECT_EQ(static_cast<std::uint32_t*>(section.dsBm.bmBits)[7 + 1], 42u) << "the bottom row comes first";
}

} // namespace vantrel::tests
