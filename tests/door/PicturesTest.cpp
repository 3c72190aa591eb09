#include "tests/host/Requests.h"
#include "tests/host/ScratchFile.h"
#include "tests/host/TestStream.h"

#include <thread>

namespace vantrel::tests {
namespace {

// The picture in the middle of a box of the key colour, colours only.
Picture Letterboxed(const Picture& picture, unsigned width, unsigned height) {
    Picture box{width, height, std::vector(std::size_t{width} * height, keyColor)};
    const unsigned left = (width - picture.width) / 2;
    const unsigned top = (height - picture.height) / 2;
    for (unsigned y = 0; y < picture.height; ++y)
        for (unsigned x = 0; x < picture.width; ++x)
            box.words.at(std::size_t{top + y} * width + left + x) = picture.At(x, y) & ~opaque;
    return box;
}

// The same as an icon. The opaque rectangle counts its rows from the bottom, so with an odd remainder it is
// one row below what was drawn.
Picture AsIcon(const Picture& picture, unsigned edge) {
    Picture icon = Letterboxed(picture, edge, edge);
    const unsigned left = (edge - picture.width) / 2;
    const unsigned bottom = (edge - picture.height) / 2;
    for (unsigned y = 0; y < edge; ++y)
        for (unsigned x = 0; x < edge; ++x) {
            std::uint32_t& word = icon.words.at(std::size_t{y} * edge + x);
            // Differences below 0 wrap and count as large.
            const bool inside = edge - 1 - y - bottom < picture.height && x - left < picture.width;
            word |= inside || word != keyColor ? opaque : 0;
        }
    return icon;
}

// A picture with some pixels of the key colour and some black ones.
ZmiBuilder SpeckledFile(std::uint16_t width, std::uint16_t height) {
    Bytes pixels;
    for (std::size_t i = 0; i < std::size_t{width} * height; ++i) {
        const std::size_t color = i % 3 == 0 ? 0xFFE0 : i % 3 == 1 ? 0 : i * 77;
        pixels.push_back(static_cast<std::uint8_t>(color));
        pixels.push_back(static_cast<std::uint8_t>(color >> 8));
    }
    return {.frames = {{width, height, pixels}}};
}

// What each handler makes of a file in a square, of which this picture (empty: none) must be visible.
void ExpectInSquare(const ZmiBuilder& file, UINT edge, const Picture& fitted) {
    TestStream stream(file.Build());
    const ScratchFile scratch(file.Build());
    const auto side = static_cast<LONG>(edge);
    const Answer bitmap = fitted.words.empty() ? Answer{E_FAIL} : Answer{S_OK, {fitted}};
    const Picture icon = AsIcon(fitted, edge);
    EXPECT_EQ(bitmap, AskThumbnail(*ThumbnailProviderOf(stream).Get(), edge));
    EXPECT_EQ(bitmap, AskImage(*ImageHandlerOf(scratch.Path()).Get(), {side, side}));
    EXPECT_EQ((Answer{S_OK, {icon, icon}}), AskIcons(*IconHandlerOf(scratch.Path()).Get(), edge, edge));
}

TEST(Pictures, ShowEveryPixelOfTheFirstFrame) {
    constexpr struct {
        std::uint16_t width, height;
    } sizes[] = {{1, 1},   {7, 13},  {2, 8},   {9, 17},  {33, 31},
                 {255, 3}, {3, 257}, {32, 10}, {33, 12}, {130, 5}};
    for (const auto size : sizes)
        for (unsigned mode = 0; mode <= 3; ++mode) {
            SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", mode " << mode);
            // Transparency is recorded in a file and changes nothing.
            ZmiBuilder file{.mode = mode,
                            .frames = {{size.width, size.height}, {64, 64}},
                            .transparentKey = PatternByte(100, 0),
                            .gap = 5};
            if (mode == 3)
                file = SpeckledFile(size.width, size.height);
            ExpectInSquare(file, std::max(size.width, size.height), NaturalPicture(file));
        }
}

TEST(Pictures, KeepTheirProportionsInASquare) {
    constexpr struct {
        std::uint16_t width, height;
        UINT edge;
        unsigned fittedWidth, fittedHeight; // 0: nothing of it shows
    } cases[] = {{512, 128, 256, 256, 64}, {128, 512, 256, 64, 256}, {30, 10, 32, 32, 10},
                 {30, 10, 16, 16, 5},      {3, 2, 100, 100, 66},     {1, 1, 96, 96, 96},
                 {100, 50, 1, 0, 0},       {200, 1, 100, 0, 0},      {1, 200, 100, 0, 0},
                 {0, 0, 32, 0, 0},         {0, 9, 32, 0, 0},         {9, 0, 32, 0, 0}};
    for (const auto& each : cases) {
        SCOPED_TRACE(testing::Message() << each.width << " x " << each.height << " into " << each.edge);
        ExpectInSquare(FlatFile(each.width, each.height), each.edge,
                       FlatPicture(each.fittedWidth, each.fittedHeight));
        // The key colour is as visible as any other.
        ExpectInSquare(FlatFile(each.width, each.height, 0xFFE0), each.edge,
                       FlatPicture(each.fittedWidth, each.fittedHeight, keyColor));
    }
    ExpectInSquare(ZmiBuilder{}, 256, FlatPicture(256, 150, 0xFFFFFF));
}

// As the system's own halftone scaling renders it.
TEST(Pictures, AreScaledWithHalftone) {
    const ZmiBuilder file = SpeckledFile(60, 44);
    TestStream stream(file.Build());
    for (const UINT edge : {29u, 100u}) {
        const int width = static_cast<int>(edge), height = width * 44 / 60;
        Picture scaled[2];
        for (const int mode : {HALFTONE, COLORONCOLOR}) {
            const Picture natural = NaturalPicture(file);
            const BITMAPINFO info = TopDown(natural);
            const UniqueScreenDc screen(GetDC(nullptr));
            const UniqueDc to(CreateCompatibleDC(nullptr));
            const UniqueBitmap target(CreateCompatibleBitmap(screen.get(), width, height));
            const HGDIOBJ previous = SelectObject(to.get(), target.get());
            SetStretchBltMode(to.get(), mode);
            EXPECT_EQ(44, StretchDIBits(to.get(), 0, 0, width, height, 0, 0, 60, 44, natural.words.data(),
                                        &info, DIB_RGB_COLORS, SRCCOPY));
            SelectObject(to.get(), previous);
            Picture& picture = scaled[mode == HALFTONE ? 0 : 1] = ReadPicture(target.get());
            for (std::uint32_t& word : picture.words)
                word |= opaque;
        }
        EXPECT_NE(scaled[0], scaled[1]) << "the picture shows no difference";
        EXPECT_EQ((Answer{S_OK, {scaled[0]}}), AskThumbnail(*ThumbnailProviderOf(stream).Get(), edge));
    }
}

TEST(Thumbnail, RefusesImpossibleEdgesAndNullOutputs) {
    TestStream stream(SpeckledFile(16, 9).Build());
    const auto provider = ThumbnailProviderOf(stream);
    for (const UINT edge : {0u, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_EQ(Answer{E_FAIL}, AskThumbnail(*provider.Get(), edge)) << edge;
    HBITMAP bitmap = nullptr;
    WTS_ALPHATYPE alpha = WTSAT_UNKNOWN;
    EXPECT_EQ(E_POINTER, provider->GetThumbnail(16, nullptr, &alpha));
    EXPECT_EQ(E_POINTER, provider->GetThumbnail(16, &bitmap, nullptr));
}

TEST(ExtractImage, CentresThePictureInAnyOtherBox) {
    constexpr struct {
        std::uint16_t width, height;
        SIZE box;
        unsigned fittedWidth, fittedHeight;
    } cases[] = {{64, 64, {120, 90}, 90, 90}, {64, 64, {90, 121}, 90, 90}, {100, 50, {256, 255}, 256, 128},
                 {7, 3, {20, 9}, 20, 8},      {1, 1, {3, 2}, 2, 2},        {1000, 1, {100, 50}, 100, 0},
                 {0, 0, {8, 6}, 0, 0},        {0, 7, {8, 6}, 0, 6},        {7, 0, {8, 6}, 8, 0},
                 {25, 13, {40, 13}, 25, 13},  {25, 13, {25, 20}, 25, 13}};
    for (const auto& each : cases) {
        SCOPED_TRACE(testing::Message() << each.width << " x " << each.height << " into " << each.box.cx
                                        << " x " << each.box.cy);
        const bool scaled = each.fittedWidth != each.width;
        const ZmiBuilder file =
            scaled ? FlatFile(each.width, each.height) : SpeckledFile(each.width, each.height);
        const ScratchFile scratch(file.Build());
        Answer answer = AskImage(*ImageHandlerOf(scratch.Path()).Get(), each.box);
        for (Picture& picture : answer.pictures)
            for (std::uint32_t& word : picture.words)
                word &= ~opaque;
        const Picture picture =
            scaled ? FlatPicture(each.fittedWidth, each.fittedHeight) : NaturalPicture(file);
        const Picture box =
            Letterboxed(picture, static_cast<unsigned>(each.box.cx), static_cast<unsigned>(each.box.cy));
        EXPECT_EQ((Answer{S_OK, {box}}), answer);
    }
}

TEST(ExtractImage, RefusesBoxesThatHoldNothing) {
    const ScratchFile scratch(FlatFile(8, 8).Build());
    const auto handler = ImageHandlerOf(scratch.Path());
    for (const SIZE box : {SIZE{0, 0}, SIZE{0, 9}, SIZE{9, 0}, SIZE{-1, -1}, SIZE{-5, 7}, SIZE{7, -5},
                           SIZE{0x7FFFFFFF, 0x7FFFFFFF}, SIZE{40000, 39999}, SIZE{0x10000, 0x10000}})
        EXPECT_EQ(Answer{E_FAIL}, AskImage(*handler.Get(), box)) << box.cx << " x " << box.cy;
}

TEST(ExtractImage, KeepsTheRequestUntilTheNextLoad) {
    const ZmiBuilder file = SpeckledFile(9, 9);
    const ScratchFile scratch(file.Build());
    const auto handler = ImageHandlerOf(scratch.Path());
    EXPECT_EQ(Answer{E_FAIL}, AskImage(*handler.Get())) << "no size has been given";

    // After E_PENDING, asynchronous hosts call again for the picture on their own thread.
    const SIZE size{9, 9};
    DWORD flags = IEIFLAG_ASYNC;
    EXPECT_EQ(E_PENDING, handler->GetLocation(nullptr, 0, nullptr, &size, 32, &flags));
    EXPECT_EQ(DWORD{IEIFLAG_ASYNC | IEIFLAG_REFRESH}, flags);
    for (int round = 0; round < 2; ++round)
        std::thread([&] {
            EXPECT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
            EXPECT_EQ((Answer{S_OK, {NaturalPicture(file)}}), AskImage(*handler.Get()));
            CoUninitialize();
        }).join();

    EXPECT_EQ(E_POINTER, handler->GetLocation(nullptr, 0, nullptr, nullptr, 32, &flags));
    EXPECT_EQ(E_POINTER, handler->GetLocation(nullptr, 0, nullptr, &size, 32, nullptr));
    EXPECT_EQ(E_POINTER, handler->Extract(nullptr));
    const auto persist = Ask<IPersistFile>(handler.Get(), IID_IPersistFile);
    EXPECT_EQ(S_OK, persist->Load(scratch.Path(), STGM_READWRITE));
    EXPECT_EQ(Answer{E_FAIL}, AskImage(*handler.Get()));
}

TEST(ExtractImage, StampsTheDateOfAnyFileThatOpens) {
    const ScratchFile scratch({1, 2, 3});
    const FILETIME written{0x12345678, 0x01D00000};
    const UniqueKernelHandle file(CreateFileW(scratch.Path(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                              nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(SetFileTime(file.get(), nullptr, nullptr, &written));
    const auto handler = ImageHandlerOf(scratch.Path());
    FILETIME stamp{1, 1};
    EXPECT_EQ(S_OK, handler->GetDateStamp(&stamp));
    EXPECT_EQ(0, CompareFileTime(&written, &stamp));
    EXPECT_EQ(S_OK, handler->GetDateStamp(nullptr));
    for (const wchar_t* path : {L"C:\\no such file.zmi", L"C:\\windows", L""}) {
        stamp = {1, 1};
        EXPECT_EQ(E_FAIL, ImageHandlerOf(path)->GetDateStamp(&stamp));
        EXPECT_EQ(1u, stamp.dwLowDateTime);
    }
}

TEST(IconHandler, MakesEachIconInItsOwnSize) {
    const ScratchFile scratch(FlatFile(30, 10).Build());
    const auto handler = IconHandlerOf(scratch.Path());
    const Picture large = AsIcon(FlatPicture(32, 10), 32);
    EXPECT_EQ((Answer{S_OK, {large, AsIcon(FlatPicture(16, 5), 16)}}), AskIcons(*handler.Get(), 32, 16));
    EXPECT_EQ((Answer{E_FAIL, {large}}), AskIcons(*handler.Get(), 32, 0)) << "the large one is the host's";
    EXPECT_EQ(Answer{E_FAIL}, AskIcons(*handler.Get(), 0, 16));

    HICON icons[2] = {};
    EXPECT_EQ(S_OK, handler->Extract(nullptr, 0, &icons[0], nullptr, 32));
    EXPECT_EQ(S_OK, handler->Extract(nullptr, 0, nullptr, &icons[1], MAKELONG(0, 16)));
    EXPECT_EQ(large, ReadIcon(UniqueIcon(icons[0]).get()));
    EXPECT_EQ(AsIcon(FlatPicture(16, 5), 16), ReadIcon(UniqueIcon(icons[1]).get()));
    EXPECT_EQ(S_OK, handler->Extract(nullptr, 0, nullptr, nullptr, 0));
}

TEST(IconHandler, PointsToNoFileAndForbidsCaching) {
    const auto handler = IconHandlerOf(L"anything");
    wchar_t buffer[] = L"untouched";
    int index = 77;
    UINT flags = 0xFFFF;
    EXPECT_EQ(S_OK, handler->GetIconLocation(GIL_FORSHELL, buffer, 9, &index, &flags));
    EXPECT_EQ(0x18u, flags);
    EXPECT_STREQ(L"untouched", buffer);
    EXPECT_EQ(77, index);
    EXPECT_EQ(E_POINTER, handler->GetIconLocation(0, buffer, 9, &index, nullptr));
}

} // namespace
} // namespace vantrel::tests
