#include "tests/door/Requests.h"
#include "tests/door/TestStream.h"

namespace vantrel::tests {
namespace {

Answer Thumbnail(const ZmiBuilder& file, UINT edge) {
    TestStream stream(file.Build());
    const Answer answer = AskThumbnail(*ThumbnailProviderOf(stream).Get(), edge);
    EXPECT_EQ(1u, stream.References());
    return answer;
}

TEST(Thumbnail, ShowsEveryPixelAtNaturalSize) {
    constexpr struct {
        std::uint16_t width, height;
    } sizes[] = {{1, 1}, {7, 13}, {8, 8}, {9, 17}, {33, 31}, {255, 3}, {3, 257}};
    for (unsigned mode = 0; mode <= 2; ++mode) {
        for (const auto size : sizes) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << ", " << size.width << " x " << size.height);
            const ZmiBuilder file{.mode = mode, .frames = {{size.width, size.height}}, .gap = 5};
            EXPECT_EQ((Answer{S_OK, {NaturalPicture(file)}}),
                      Thumbnail(file, std::max(size.width, size.height)));
        }
    }
}

TEST(Thumbnail, ShowsTheFirstOfSeveralFrames) {
    for (unsigned mode = 0; mode <= 2; ++mode) {
        const ZmiBuilder file{.mode = mode, .frames = {{21, 5}, {64, 64}, {3, 3}}};
        EXPECT_EQ((Answer{S_OK, {NaturalPicture(file)}}), Thumbnail(file, 21)) << "mode " << mode;
    }
}

TEST(Thumbnail, FitsThePictureIntoTheEdge) {
    constexpr struct {
        std::uint16_t width, height;
        UINT edge;
        unsigned fittedWidth, fittedHeight; // 0: nothing of it shows
    } cases[] = {{512, 128, 256, 256, 64}, {128, 512, 256, 64, 256}, {30, 10, 32, 32, 10},
                 {3, 2, 100, 100, 66},     {100, 50, 1, 0, 0},       {1, 1, 96, 96, 96},
                 {5, 5, 0, 0, 0},          {200, 1, 100, 0, 0},      {16, 9, 0xFFFFFFFF, 0, 0},
                 {0, 0, 32, 0, 0},         {0, 9, 32, 0, 0},         {9, 0, 32, 0, 0}};
    for (const auto& each : cases) {
        SCOPED_TRACE(testing::Message() << each.width << " x " << each.height << " into " << each.edge);
        const Answer answer = Thumbnail(FlatFile(each.width, each.height), each.edge);
        EXPECT_EQ(each.fittedWidth > 0 ? (Answer{S_OK, {FlatPicture(each.fittedWidth, each.fittedHeight)}})
                                       : Answer{E_FAIL},
                  answer);
    }
}

TEST(Thumbnail, ShowsTheBlankDefault) {
    EXPECT_EQ((Answer{S_OK, {FlatPicture(256, 150, 0xFFFFFF)}}), Thumbnail(ZmiBuilder{}, 256));
}

TEST(Thumbnail, RefusesFilesWithoutAPaintableFrame) {
    const auto oddFrame = [](unsigned mode, std::uint8_t flags) {
        return ZmiBuilder{
            .mode = mode, .frames = {{.width = 8, .height = 8, .flags = flags}}, .frameTable = true};
    };
    const ZmiBuilder files[] = {
        {.mode = 3, .frames = {{8, 8}}},
        {.mode = 0, .frameTable = true},
        {.mode = 2, .frameTable = true},
        oddFrame(2, 24), // reserved mode
        oddFrame(1, 16), // takes its pixels for more than the file's mode gave it
        oddFrame(2, 8),  // indexed, in a file without a colour table
    };
    for (const ZmiBuilder& file : files)
        EXPECT_EQ(Answer{E_FAIL}, Thumbnail(file, 32)) << &file - files;
}

TEST(Thumbnail, IsInitializedOnce) {
    const ZmiBuilder file{.frames = {{9, 9}}};
    TestStream first(file.Build());
    TestStream second(ZmiBuilder{}.Build());
    auto initialize = Create<IInitializeWithStream>(thumbnailProviderClass, IID_IInitializeWithStream);
    auto provider = Ask<IThumbnailProvider>(initialize.Get(), __uuidof(IThumbnailProvider));
    EXPECT_EQ(Answer{E_FAIL}, AskThumbnail(*provider.Get(), 9)) << "before it has a stream";
    EXPECT_EQ(E_POINTER, initialize->Initialize(nullptr, STGM_READ));
    EXPECT_EQ(S_OK, initialize->Initialize(&first, STGM_READ));
    EXPECT_EQ(E_UNEXPECTED, initialize->Initialize(&second, STGM_READ));
    EXPECT_EQ(1u, second.References());
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ((Answer{S_OK, {NaturalPicture(file)}}), AskThumbnail(*provider.Get(), 9));
    EXPECT_EQ(0u, second.Calls());
    initialize.Reset();
    EXPECT_EQ(2u, first.References());
    provider.Reset();
    EXPECT_EQ(1u, first.References());
}

TEST(Thumbnail, ChecksItsPointers) {
    TestStream stream(ZmiBuilder{}.Build());
    const auto provider = ThumbnailProviderOf(stream);
    HBITMAP bitmap = nullptr;
    WTS_ALPHATYPE alpha = WTSAT_UNKNOWN;
    EXPECT_EQ(E_POINTER, provider->GetThumbnail(16, nullptr, &alpha));
    EXPECT_EQ(E_POINTER, provider->GetThumbnail(16, &bitmap, nullptr));
    EXPECT_EQ(0u, stream.Calls());
}

} // namespace
} // namespace vantrel::tests
