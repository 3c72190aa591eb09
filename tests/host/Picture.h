// A bitmap's or an icon's pixels as a host sees them.
#pragma once

#include "support/Handles.h"
#include "tests/builder/FileFacts.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace vantrel::tests {

inline constexpr std::uint32_t keyColor = 0xFFFF00; // the background around a picture
inline constexpr std::uint32_t opaque = 0xFF000000;

// 32-bit words 0xAARRGGBB, the top row first; empty when there is no bitmap.
struct Picture {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<std::uint32_t> words{};

    std::uint32_t At(unsigned x, unsigned y) const { return words.at(std::size_t{y} * width + x); }
    bool operator==(const Picture&) const = default;
};

inline BITMAPINFO TopDown(const Picture& picture) {
    const auto width = static_cast<LONG>(picture.width), height = static_cast<LONG>(picture.height);
    return {{sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
}

inline Picture ReadPicture(HBITMAP bitmap) {
    BITMAP facts{};
    if (!bitmap || !GetObjectW(bitmap, sizeof facts, &facts))
        return {};
    Picture picture{static_cast<unsigned>(facts.bmWidth), static_cast<unsigned>(facts.bmHeight)};
    picture.words.resize(std::size_t{picture.width} * picture.height);
    BITMAPINFO info = TopDown(picture);
    const UniqueScreenDc screen(GetDC(nullptr));
    EXPECT_EQ(facts.bmHeight, GetDIBits(screen.get(), bitmap, 0, picture.height, picture.words.data(), &info,
                                        DIB_RGB_COLORS));
    return picture;
}

// What a fitted bitmap of the file's first frame must look like at its natural size.
inline Picture NaturalPicture(const ZmiBuilder& file) {
    Picture picture{file.frames[0].width, file.frames[0].height, FramePixelFacts(file.Build(), 0).Shown()};
    for (std::uint32_t& word : picture.words)
        word |= opaque;
    return picture;
}

// A file of one colour, which scaling doesn't change, and a bitmap of that colour.
inline constexpr std::uint32_t flatColor = 0xFF0000;

inline ZmiBuilder FlatFile(std::uint16_t width, std::uint16_t height, std::uint16_t color565 = 0xF800) {
    ZmiBuilder file{.mode = 1, .frames = {{width, height}}};
    file.palette.fill(color565);
    return file;
}

inline Picture FlatPicture(unsigned width, unsigned height, std::uint32_t color = flatColor) {
    return {width, height, std::vector(std::size_t{width} * height, opaque | color)};
}

} // namespace vantrel::tests
