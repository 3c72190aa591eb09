#include "tests/tools/ToolTest.h"

namespace vantrel::tests {
namespace {

using UnpackTest = ToolTest;

constexpr std::uint32_t green = 0x07E0;

// Each pixel of a ZMI file in 16-bit colour is the builder's, or green if it is transparent.
void ExpectPixels(const ZmiBuilder& made, const Bytes& file) {
    const std::size_t table = GetField(file, file_header::size, image_header::pixelOffset);
    const Bytes from = made.Build();
    for (std::size_t i = 0; i < made.frames.size(); ++i) {
        const std::size_t at =
            GetField(file, table + frame_table::size + i * frame_record::size, frame_record::dataOffset);
        const Colors& palette = made.frames[i].palette.value_or(made.palette);
        for (unsigned pixel = 0; pixel < made.frames[i].width * made.frames[i].height; ++pixel) {
            const unsigned x = pixel % made.frames[i].width, y = pixel / made.frames[i].width;
            const std::uint32_t raw =
                made.mode == 0 ? 0 : GetField(from, made.PixelsAt(i) + pixel * made.mode, {0, made.mode});
            const bool transparent = made.mode != 0 && raw == made.frames[i].transparentKey;
            EXPECT_EQ(transparent      ? Rgb(green)
                      : made.mode == 1 ? Rgb(palette[raw])
                                       : made.ExpectedPixel(x, y, i),
                      Rgb(GetField(file, at + 2 * pixel, {0, 2})))
                << "frame " << i << " at " << x << ", " << y;
        }
    }
}

TEST_F(UnpackTest, GivesBackEveryPixelOfEveryFrame) {
    const Arguments names = {L"a-001.png", L"a-002.png", L"a-003.png"};
    for (const auto& [mode, packMode] : {std::pair(0u, L"1"), {1u, L"8"}, {2u, L"565"}}) {
        SCOPED_TRACE(mode);
        ZmiBuilder made{.mode = mode, .frames = {{9, 5}, {1, 17}, {12, 3}}, .transparentKey = 7};
        // A transparent colour that some pixels have, and its own table.
        made.frames[2].palette = mode == 1 ? std::optional(PatternColors(5)) : std::nullopt;
        const Bytes plain = made.Build();
        for (std::size_t i = 0; i < names.size() && mode != 0; ++i)
            made.frames[i].transparentKey = GetField(plain, made.PixelsAt(i), {0, mode});
        Write(L"a.zmi", made.Build());
        Unpack({L"--force", L"a.zmi"}).Ended(0);
        Pack({L"--transparent", L"00ff00", names[0], names[1], names[2], L"direct.zmi"}).Ended(0);
        ExpectPixels(made, Read(L"direct.zmi"));

        // What this mode can represent comes back unchanged, from a GIF as well.
        Arguments pack = {L"--mode", packMode, L"--transparent", L"00ff00", names[0], L"a.zmi"};
        if (mode == 0)
            pack.erase(pack.begin() + 2, pack.begin() + 4);
        Pack(pack).Ended(0);
        Unpack({L"--force", L"--out", L"back", L"a.zmi"}).Ended(0);
        Unpack({L"--gif", L"a.gif", L"a.zmi"}).Ended(0);
        const Bytes packed = Read(L"a.zmi");
        for (const std::wstring from : {L"back/a.png", L"a.gif"}) {
            pack[pack.size() - 2] = from;
            Pack(pack).Ended(0);
            EXPECT_EQ(packed, Read(L"a.zmi")) << std::filesystem::path(from);
        }
    }
}

TEST_F(UnpackTest, SaysWhichFramesAreBrokenAndWritesTheOthers) {
    ZmiBuilder made{.frames = {{3, 2}, {4, 4}, {5, 1}, {2, 2}}, .title = "a\x1B\xE4"};
    made.frames[1].flags = 0x18;
    Bytes broken = made.Build();
    SetField(broken, made.RecordAt(2), frame_record::dataOffset, 0x80000001);
    Write(L"a.zmi", broken);
    Write(L"cut.zmi", Bytes(broken.begin(), broken.end() - 1));
    const ToolRun run = Unpack({L"--out", L"new/out", L"cut.zmi", L"none.zmi", L"a.zmi"});
    run.Ended(1, "a.zmi: frame 2 is in pixel mode 3, by its flags at offset ");
    for (const char* words : {"the pixels of frame 3, 10 bytes at offset 2,147,483,649",
                              "cut.zmi: data offset", "none.zmi: it cannot be opened: "})
        EXPECT_TRUE(Contains(run.err, words)) << run.err;
    EXPECT_TRUE(Contains(run.out, "a.zmi -> new/out/a-001.png ... new/out/a-004.png")) << run.out;
    EXPECT_EQ(2, std::distance(std::filesystem::directory_iterator(folder_ / L"new/out"), {}));
    // After the header, with the title in UTF-8 and nothing in it that a terminal would interpret.
    const Bytes bytes = Read(LR"(new\out\a-001.png)");
    const std::string png(bytes.begin(), bytes.end());
    EXPECT_EQ(37u, png.find("iTXtTitle"));
    EXPECT_TRUE(Contains(png, "a<U+001B>\xC3\xA4")) << png.substr(0, 200);

    const ToolRun info = Unpack({L"--info", L"--json", L"a.zmi"});
    info.Ended(1);
    EXPECT_TRUE(Contains(info.out, R"("frame": 4, "width": 2, "height": 2, "mode": 2)")) << info.out;
    EXPECT_TRUE(Contains(info.out, R"("fault": "frame 2 is in pixel mode 3)")) << info.out;
}

TEST_F(UnpackTest, NeverWritesOneResultOverAnotherOrOverAnInput) {
    const Bytes one = ZmiBuilder{.frames = {{2, 2}}}.Build();
    const Bytes two = ZmiBuilder{.frames = {{2, 2}, {2, 2}}}.Build();
    for (const auto& [name, bytes] : {std::pair(L"a.zmi", two), {L"A-001.zmi", one}, {L"in.gif", one}})
        Write(name, bytes);
    Unpack({L"a.zmi", L"A-001.zmi"}).Ended(0);
    EXPECT_EQ(6, FileCount()); // "A-001 (2).png" among them
    Unpack({L"--gif", L"in.gif", L"--force", L"in.gif"}).Ended(2, "one of the input files");
    EXPECT_EQ(one, Read(L"in.gif"));
    const std::pair<Arguments, const char*> usages[] = {
        {{L"--frames", L"2-1", L"a.zmi"}, "--frames needs a whole number from 2 to 65535, not \"1\""},
        {{L"--frames", L"1,", L"a.zmi"}, "not \"\""},
        {{L"--delay", L"20", L"a.zmi"}, "--delay needs --gif"},
        {{L"--info", L"--gif", L"b.gif", L"a.zmi"}, "--info writes no pictures"},
        {{}, "no file given"},
    };
    for (const auto& [arguments, words] : usages)
        Unpack(arguments).Ended(2, words);
    Unpack({L"--frames", L"2-3", L"--gif", L"b.gif", L"a.zmi"}).Ended(1, "there is no frame 3");
    EXPECT_EQ(7, FileCount()); // the frames that could be read make the animation
}

} // namespace
} // namespace vantrel::tests
