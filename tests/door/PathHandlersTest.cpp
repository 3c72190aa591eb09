#include "tests/door/Requests.h"
#include "tests/door/ScratchFile.h"

namespace vantrel::tests {
namespace {

// The picture in the middle of a box of the key colour, colours only.
Picture Letterboxed(const Picture& picture, unsigned width, unsigned height) {
    Picture box{width, height, std::vector(std::size_t{width} * height, keyColour)};
    const unsigned left = (width - picture.width) / 2;
    const unsigned top = (height - picture.height) / 2;
    for (unsigned y = 0; y < picture.height; ++y)
        for (unsigned x = 0; x < picture.width; ++x)
            box.words.at(std::size_t{top + y} * width + left + x) = picture.At(x, y) & ~opaque;
    return box;
}

// The same as an icon. The opaque rectangle counts its rows from the bottom, so that with an odd rest it lies
// one row below what was drawn.
Picture AsIcon(const Picture& picture, unsigned edge) {
    Picture icon = Letterboxed(picture, edge, edge);
    const unsigned left = (edge - picture.width) / 2;
    const unsigned bottom = (edge - picture.height) / 2;
    for (unsigned y = 0; y < edge; ++y) {
        for (unsigned x = 0; x < edge; ++x) {
            const unsigned row = edge - 1 - y;
            std::uint32_t& word = icon.words.at(std::size_t{y} * edge + x);
            const bool inside =
                row >= bottom && row < bottom + picture.height && x >= left && x < left + picture.width;
            word |= inside || word != keyColour ? opaque : 0;
        }
    }
    return icon;
}

Answer WithoutAlpha(Answer answer) {
    for (Picture& picture : answer.pictures)
        for (std::uint32_t& word : picture.words)
            word &= ~opaque;
    return answer;
}

// A picture with pixels of the key colour and of black in it.
ZmiBuilder SpeckledFile(std::uint16_t width, std::uint16_t height) {
    Bytes pixels;
    for (std::size_t i = 0; i < std::size_t{width} * height; ++i) {
        const std::uint16_t colour = i % 3 == 0   ? 0xFFE0
                                     : i % 3 == 1 ? 0
                                                  : static_cast<std::uint16_t>(i * 77);
        pixels.insert(pixels.end(),
                      {static_cast<std::uint8_t>(colour), static_cast<std::uint8_t>(colour >> 8)});
    }
    return {.frames = {{width, height, pixels}}};
}

TEST(ExtractImage, GivesASquareRequestTheFittedBitmap) {
    for (unsigned mode = 0; mode <= 2; ++mode) {
        const ZmiBuilder file{.mode = mode, .frames = {{25, 13}, {40, 40}}};
        const ScratchFile scratch(file.Build());
        const auto handler = ImageHandlerOf(scratch.Path());
        EXPECT_EQ((Answer{S_OK, {NaturalPicture(file)}}), AskImage(*handler.Get(), {25, 25}));
    }
}

TEST(ExtractImage, CentresThePictureInAnyOtherBox) {
    struct {
        ZmiBuilder file;
        SIZE box;
        Picture picture;
    } cases[] = {
        {FlatFile(64, 64), {120, 90}, FlatPicture(90, 90)}, // at (15, 0)
        {FlatFile(64, 64), {90, 121}, FlatPicture(90, 90)}, // at (0, 15)
        {FlatFile(100, 50), {256, 255}, FlatPicture(256, 128)},
        {FlatFile(1000, 1), {100, 50}, {}}, // too thin to show
        {SpeckledFile(25, 13), {40, 13}, {}},
        {SpeckledFile(25, 13), {25, 20}, {}},
    };
    for (auto& each : cases) {
        SCOPED_TRACE(testing::Message() << "into " << each.box.cx << " x " << each.box.cy);
        if (each.file.frames[0].width == 25)
            each.picture = NaturalPicture(each.file);
        const ScratchFile scratch(each.file.Build());
        const auto handler = ImageHandlerOf(scratch.Path());
        const Picture box =
            Letterboxed(each.picture, static_cast<unsigned>(each.box.cx), static_cast<unsigned>(each.box.cy));
        EXPECT_EQ((Answer{S_OK, {box}}), WithoutAlpha(AskImage(*handler.Get(), each.box)));
    }
}

TEST(ExtractImage, RefusesBoxesThatHoldNothing) {
    const ScratchFile scratch(FlatFile(8, 8).Build());
    const auto handler = ImageHandlerOf(scratch.Path());
    for (const SIZE box : {SIZE{0, 0}, SIZE{0, 9}, SIZE{9, 0}, SIZE{-1, -1}, SIZE{-5, 7}, SIZE{7, -5},
                           SIZE{0x7FFFFFFF, 0x7FFFFFFF}, SIZE{40000, 39999}})
        EXPECT_EQ(Answer{E_FAIL}, AskImage(*handler.Get(), box)) << box.cx << " x " << box.cy;
}

TEST(ExtractImage, KeepsTheRequestUntilTheNextLoad) {
    const ZmiBuilder file = SpeckledFile(9, 9);
    const ScratchFile scratch(file.Build());
    const auto handler = ImageHandlerOf(scratch.Path());
    EXPECT_EQ(Answer{E_FAIL}, AskImage(*handler.Get())) << "no size has been given";

    // Asynchronous hosts come back for the picture after E_PENDING.
    const SIZE size{9, 9};
    DWORD flags = IEIFLAG_ASYNC;
    EXPECT_EQ(E_PENDING, handler->GetLocation(nullptr, 0, nullptr, &size, 32, &flags));
    EXPECT_EQ(DWORD{IEIFLAG_ASYNC | IEIFLAG_REFRESH}, flags);
    for (int round = 0; round < 2; ++round)
        EXPECT_EQ((Answer{S_OK, {NaturalPicture(file)}}), AskImage(*handler.Get()));

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
    const HANDLE file =
        CreateFileW(scratch.Path(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_TRUE(SetFileTime(file, nullptr, nullptr, &written));
    CloseHandle(file);

    const auto handler = ImageHandlerOf(scratch.Path());
    FILETIME stamp{1, 1};
    EXPECT_EQ(S_OK, handler->GetDateStamp(&stamp));
    EXPECT_EQ(0, CompareFileTime(&written, &stamp));
    EXPECT_EQ(S_OK, handler->GetDateStamp(nullptr));
    const HANDLE exclusive = CreateFileW(scratch.Path(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(E_FAIL, handler->GetDateStamp(&stamp));
    CloseHandle(exclusive);
    for (const wchar_t* path : {L"C:\\no such file.zmi", L"C:\\windows", L""}) {
        stamp = {1, 1};
        EXPECT_EQ(E_FAIL, ImageHandlerOf(path)->GetDateStamp(&stamp));
        EXPECT_EQ(1u, stamp.dwLowDateTime);
    }
}

TEST(IconHandler, DrawsThePictureOnATransparentSquare) {
    constexpr struct {
        std::uint16_t width, height;
        UINT edge;
    } sizes[] = {{32, 10, 32}, {10, 32, 32}, {16, 9, 16}, {9, 16, 16}, {33, 12, 33}, {48, 48, 48}, {1, 1, 1}};
    for (const auto size : sizes) {
        for (unsigned mode = 0; mode <= 3; ++mode) {
            SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", mode " << mode);
            const ZmiBuilder file = mode == 3
                                        ? SpeckledFile(size.width, size.height)
                                        : ZmiBuilder{.mode = mode, .frames = {{size.width, size.height}}};
            const ScratchFile scratch(file.Build());
            const Picture icon = AsIcon(NaturalPicture(file), size.edge);
            EXPECT_EQ((Answer{S_OK, {icon, icon}}),
                      AskIcons(*IconHandlerOf(scratch.Path()).Get(), size.edge, size.edge));
        }
    }
}

TEST(IconHandler, MakesEachIconInItsOwnSize) {
    const ScratchFile scratch(FlatFile(30, 10).Build());
    const ScratchFile thin(FlatFile(1000, 1).Build());
    const auto handler = IconHandlerOf(scratch.Path());
    EXPECT_EQ((Answer{S_OK, {AsIcon(FlatPicture(32, 10), 32), AsIcon(FlatPicture(16, 5), 16)}}),
              AskIcons(*handler.Get(), 32, 16));
    EXPECT_EQ((Answer{S_OK, {AsIcon(FlatPicture(256, 85), 256), AsIcon(FlatPicture(48, 16), 48)}}),
              AskIcons(*handler.Get(), 256, 48));
    EXPECT_EQ((Answer{S_OK, {AsIcon({}, 32), AsIcon({}, 16)}}),
              AskIcons(*IconHandlerOf(thin.Path()).Get(), 32, 16));
    // The large one stays with the host when the small one fails.
    EXPECT_EQ((Answer{E_FAIL, {AsIcon(FlatPicture(32, 10), 32)}}), AskIcons(*handler.Get(), 32, 0));
    EXPECT_EQ(Answer{E_FAIL}, AskIcons(*handler.Get(), 0, 16));

    HICON icon = nullptr;
    EXPECT_EQ(S_OK, handler->Extract(nullptr, 0, &icon, nullptr, 32));
    EXPECT_NE(nullptr, Icon(icon));
    icon = nullptr;
    EXPECT_EQ(S_OK, handler->Extract(nullptr, 0, nullptr, &icon, MAKELONG(0, 16)));
    EXPECT_NE(nullptr, Icon(icon));
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

TEST(PathHandlers, TakeAPathAndNothingElse) {
    for (const CLSID& classId : {extractImageClass, iconHandlerClass}) {
        const auto persist = Create<IPersistFile>(classId, IID_IPersistFile);
        CLSID found{};
        wchar_t* name = nullptr;
        EXPECT_EQ(E_NOTIMPL, persist->GetClassID(&found));
        EXPECT_EQ(E_NOTIMPL, persist->IsDirty());
        EXPECT_EQ(E_NOTIMPL, persist->Save(L"x", TRUE));
        EXPECT_EQ(E_NOTIMPL, persist->SaveCompleted(L"x"));
        EXPECT_EQ(E_NOTIMPL, persist->GetCurFile(&name));
        EXPECT_EQ(E_POINTER, persist->Load(nullptr, 0));
    }
}

TEST(PathHandlers, FollowTheLastPath) {
    const ScratchFile first(FlatFile(8, 8).Build());
    const ScratchFile second(FlatFile(8, 4).Build());
    for (const Request& request : PathRequests(L"C:\\no such file.zmi"))
        EXPECT_EQ(Answer{request.failure}, request.ask()) << request.name;
    const auto handler = ImageHandlerOf(first.Path());
    EXPECT_EQ(S_OK, Ask<IPersistFile>(handler.Get(), IID_IPersistFile)->Load(second.Path(), 0));
    EXPECT_EQ((Answer{S_OK, {FlatPicture(8, 4)}}), AskImage(*handler.Get(), {8, 8}));
    const auto icons = IconHandlerOf(first.Path());
    EXPECT_EQ(S_OK, Ask<IPersistFile>(icons.Get(), IID_IPersistFile)->Load(second.Path(), 0));
    EXPECT_EQ(AsIcon(FlatPicture(8, 4), 8), AskIcons(*icons.Get(), 8, 8).pictures.at(0));
}

} // namespace
} // namespace vantrel::tests
