#include "tests/door/Picture.h"
#include "tests/door/TestStream.h"
#include "tests/door/TheDll.h"

#include <propsys.h>
#include <shlwapi.h>
#include <thumbcache.h>

namespace vantrel::tests {
namespace {

struct Answer {
    HRESULT result = E_UNEXPECTED;
    Picture picture{};
};

// Asks once, and checks what holds for every answer: outputs are whole or untouched.
Answer Ask(IThumbnailProvider* provider, UINT edge) {
    const auto untouched = reinterpret_cast<HBITMAP>(std::uintptr_t{0x1234});
    HBITMAP handle = untouched;
    auto alpha = WTSAT_ARGB; // never an answer
    Answer answer;
    answer.result = provider->GetThumbnail(edge, &handle, &alpha);
    if (answer.result == S_OK) {
        EXPECT_EQ(WTSAT_RGB, alpha);
        EXPECT_NE(untouched, handle);
        answer.picture = ReadPicture(Bitmap(handle).get());
        EXPECT_NE(0u, answer.picture.width);
    } else {
        EXPECT_EQ(untouched, handle);
        EXPECT_EQ(WTSAT_ARGB, alpha);
    }
    return answer;
}

Answer Thumbnail(IStream& stream, UINT edge) {
    const auto initialize = Create<IInitializeWithStream>(thumbnailProviderClass, IID_IInitializeWithStream);
    EXPECT_EQ(S_OK, initialize->Initialize(&stream, STGM_READ));
    return Ask(vantrel::tests::Ask<IThumbnailProvider>(initialize.Get(), __uuidof(IThumbnailProvider)).Get(),
               edge);
}

Answer Thumbnail(const Bytes& bytes, UINT edge) {
    TestStream stream(bytes);
    const Answer answer = Thumbnail(stream, edge);
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
            const Answer answer = Thumbnail(file.Build(), std::max(size.width, size.height));
            EXPECT_EQ(S_OK, answer.result);
            EXPECT_EQ(NaturalPicture(file), answer.picture);
        }
    }
}

TEST(Thumbnail, ShowsTheFirstOfSeveralFrames) {
    for (unsigned mode = 0; mode <= 2; ++mode) {
        const ZmiBuilder file{.mode = mode, .frames = {{21, 5}, {64, 64}, {3, 3}}};
        EXPECT_EQ(NaturalPicture(file), Thumbnail(file.Build(), 21).picture) << "mode " << mode;
    }
}

TEST(Thumbnail, FitsThePictureIntoTheEdge) {
    constexpr struct {
        std::uint16_t width, height;
        UINT edge;
        unsigned fittedWidth, fittedHeight;
    } cases[] = {{512, 128, 256, 256, 64}, {128, 512, 256, 64, 256}, {30, 10, 32, 32, 10},
                 {3, 2, 100, 100, 66},     {100, 50, 1, 0, 0},       {1, 1, 96, 96, 96},
                 {5, 5, 0, 0, 0},          {200, 1, 100, 0, 0},      {16, 9, 0xFFFFFFFF, 0, 0},
                 {0, 0, 32, 0, 0},         {0, 9, 32, 0, 0}};
    for (const auto& each : cases) {
        SCOPED_TRACE(testing::Message() << each.width << " x " << each.height << " into " << each.edge);
        // One flat colour: scaling must not bring in another one, and every pixel is opaque.
        Bytes red;
        for (std::size_t i = 0; i < std::size_t{each.width} * each.height; ++i)
            red.insert(red.end(), {0x00, 0xF8});
        const ZmiBuilder file{.frames = {{each.width, each.height, red}}};
        const Answer answer = Thumbnail(file.Build(), each.edge);
        const bool shows = each.fittedWidth > 0;
        EXPECT_EQ(shows ? S_OK : E_FAIL, answer.result);
        EXPECT_EQ((Picture{each.fittedWidth, each.fittedHeight,
                           std::vector(std::size_t{each.fittedWidth} * each.fittedHeight, 0xFFFF0000)}),
                  answer.picture);
    }
}

TEST(Thumbnail, ShowsTheBlankDefault) {
    const Answer answer = Thumbnail(ZmiBuilder{}.Build(), 256);
    EXPECT_EQ(S_OK, answer.result);
    EXPECT_EQ((Picture{256, 150, std::vector(std::size_t{256} * 150, 0xFFFFFFFF)}), answer.picture);
}

TEST(Thumbnail, RefusesFilesWithoutAPaintableFrame) {
    const ZmiBuilder files[] = {
        {.mode = 3, .frames = {{8, 8}}},
        {.mode = 2, .frames = {{.width = 8, .height = 8, .flags = std::uint8_t{24}}}, .frameTable = true},
        {.mode = 0, .frameTable = true},
        {.mode = 2, .frameTable = true},
        // A frame that takes its pixels for more than the file's mode gave it.
        {.mode = 1, .frames = {{.width = 8, .height = 8, .flags = std::uint8_t{16}}}, .frameTable = true},
        // Indexed pixels in a file without a colour table.
        {.mode = 2, .frames = {{.width = 8, .height = 8, .flags = std::uint8_t{8}}}, .frameTable = true},
    };
    for (const ZmiBuilder& file : files)
        EXPECT_EQ(E_FAIL, Thumbnail(file.Build(), 32).result) << &file - files;
}

TEST(Thumbnail, RefusesEveryTruncation) {
    for (unsigned mode = 0; mode <= 2; ++mode) {
        const Bytes whole = ZmiBuilder{.mode = mode, .frames = {{5, 3}, {4, 4}}}.Build();
        for (std::size_t length = 0; length < whole.size(); ++length)
            ASSERT_EQ(E_FAIL,
                      Thumbnail(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)), 16)
                          .result)
                << "mode " << mode << " cut to " << length;
    }
}

TEST(Thumbnail, RefusesGarbage) {
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        Bytes bytes(seed * 7);
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = PatternByte(seed, i);
        ASSERT_EQ(E_FAIL, Thumbnail(bytes, 16).result);
    }
}

TEST(Thumbnail, IsInitializedOnce) {
    const ZmiBuilder file{.frames = {{9, 9}}};
    TestStream first(file.Build());
    TestStream second(ZmiBuilder{}.Build());
    const auto initialize = Create<IInitializeWithStream>(thumbnailProviderClass, IID_IInitializeWithStream);
    auto provider = vantrel::tests::Ask<IThumbnailProvider>(initialize.Get(), __uuidof(IThumbnailProvider));
    EXPECT_EQ(E_FAIL, Ask(provider.Get(), 9).result) << "before it has a stream";
    EXPECT_EQ(E_POINTER, initialize->Initialize(nullptr, STGM_READ));
    EXPECT_EQ(S_OK, initialize->Initialize(&first, STGM_READ));
    EXPECT_EQ(2u, first.References());
    EXPECT_EQ(E_UNEXPECTED, initialize->Initialize(&second, STGM_READ));
    EXPECT_EQ(1u, second.References());
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(NaturalPicture(file), Ask(provider.Get(), 9).picture);
    EXPECT_EQ(0u, second.Calls());
    EXPECT_EQ(2u, first.References());
    provider.Reset();
    EXPECT_EQ(2u, first.References());
}

TEST(Thumbnail, ChecksItsPointers) {
    TestStream stream(ZmiBuilder{}.Build());
    const auto initialize = Create<IInitializeWithStream>(thumbnailProviderClass, IID_IInitializeWithStream);
    const auto provider =
        vantrel::tests::Ask<IThumbnailProvider>(initialize.Get(), __uuidof(IThumbnailProvider));
    ASSERT_EQ(S_OK, initialize->Initialize(&stream, STGM_READ));
    HBITMAP bitmap = nullptr;
    WTS_ALPHATYPE alpha = WTSAT_UNKNOWN;
    EXPECT_EQ(E_POINTER, provider->GetThumbnail(16, nullptr, &alpha));
    EXPECT_EQ(E_POINTER, provider->GetThumbnail(16, &bitmap, nullptr));
    EXPECT_EQ(nullptr, bitmap);
    EXPECT_EQ(0u, stream.Calls());
}

} // namespace
} // namespace vantrel::tests
