#include "tests/builder/FileFacts.h"
#include "tests/tools/ToolTest.h"

namespace vantrel::tests {
namespace {

using UnpackTest = ToolTest;

TEST_F(UnpackTest, GivesBackEveryPixelOfEveryFrame) {
    for (const unsigned mode : {0u, 1u, 2u}) {
        SCOPED_TRACE(mode);
        ZmiBuilder made{.mode = mode, .frames = {{9, 5}, {1, 17}, {12, 3}}, .transparentKey = 7};
        // A transparent colour that some pixels have, and its own table.
        made.frames[2].palette = mode == 1 ? std::optional(PatternColors(5)) : std::nullopt;
        for (std::size_t i = 0; i < made.frames.size(); ++i)
            made.frames[i].transparentKey = FramePixelFacts(made.Build(), i).Value(0, 0);
        const Bytes file = made.Build();
        Write(L"a.zmi", file);
        Unpack({L"--force", L"a.zmi"}).Ended(0);
        Pack({L"--transparent", L"00ff00", L"a-001.png", L"a-002.png", L"a-003.png", L"b.zmi"}).Ended(0);
        const Bytes packed = Read(L"b.zmi");
        for (std::size_t i = 0; i < made.frames.size(); ++i) {
            std::vector<std::uint32_t> words = FramePixelFacts(file, i).Shown();
            for (std::uint32_t& word : words)
                word = word < 0xFF000000 ? 0x0000FF00 : word;
            EXPECT_EQ(words, FramePixelFacts(packed, i).Shown()) << "frame " << i;
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
    Unpack({L"--out", L"new/out", L"cut.zmi", L"none.zmi", L"a.zmi"})
        .Ended(1, "a.zmi: frame 2 is in pixel mode 3, by its flags at offset ",
               "the pixels of frame 3, 10 bytes at offset 2,147,483,649", "cut.zmi: the file is cut short",
               "none.zmi: file not found\n")
        .Told("a.zmi -> new/out/a-001.png ... new/out/a-004.png");
    EXPECT_EQ(2, FileCount(L"new/out"));
    // The title is there in UTF-8 and nothing in it that a terminal would interpret.
    const Bytes bytes = Read(LR"(new\out\a-001.png)");
    const std::string png(bytes.begin(), bytes.end());
    EXPECT_TRUE(Contains(png, "iTXtTitle"));
    EXPECT_TRUE(Contains(png, "a<U+001B>\xC3\xA4")) << png.substr(0, 200);

    Unpack({L"--info", L"--json", L"a.zmi"})
        .Ended(1)
        .Told(R"("frame": 4, "width": 2, "height": 2, "mode": 2)", R"("fault": "frame 2 is in pixel mode 3)");
}

TEST_F(UnpackTest, WritesTheFramesThatWereAskedFor) {
    Write(L"a.zmi", ZmiBuilder{.frames = {{3, 2}, {4, 1}, {5, 1}}}.Build());
    Write(L"many.zmi", ZmiBuilder{.frames = std::vector<ZmiFrame>(1000, {1, 1})}.Build());
    constexpr std::size_t widthInPng = 19;
    for (const auto& [list, name, width] : {std::tuple(L"2", L"a-002.png", 4u), {L"3", L"a-003.png", 5u}}) {
        Unpack({L"--frames", list, L"a.zmi"}).Ended(0);
        EXPECT_EQ(width, Read(name).at(widthInPng));
    }
    Unpack({L"--frames", L"7,1000", L"many.zmi"}).Ended(0);
    EXPECT_FALSE(Read(L"many-0007.png").empty());
    EXPECT_FALSE(Read(L"many-1000.png").empty());
    EXPECT_EQ(6, FileCount());
}

TEST_F(UnpackTest, BoundsWhatAFileCanMakeOfItself) {
    ZmiBuilder shared{.frames = std::vector<ZmiFrame>(1040, {1024, 512}), .sharePixels = true};
    Write(L"a.zmi", shared.Build());
    const ToolRun run = Unpack({L"a.zmi"});
    run.Ended(1, "its 1,040 frames share their pixels and would become 1,090,519,040 bytes");
    EXPECT_EQ(1, std::ranges::count(run.err, '\n'));
    EXPECT_EQ(1, FileCount());
    Unpack({L"--frames", L"1040", L"a.zmi"}).Ended(0);

    Write(L"b.zmi", ZmiBuilder{.mode = 0, .frames = {{8193, 8192, Bytes(8192 * 1025)}, {2, 2}}}.Build());
    Unpack({L"--gif", L"b.gif", L"b.zmi"}).Ended(1, "frame 1 is too large for a GIF");
    EXPECT_FALSE(Read(L"b.gif").empty());
    Unpack({L"--frames", L"1", L"--gif", L"none.gif", L"b.zmi"}).Ended(1, "there are no frames to write");
    EXPECT_TRUE(Read(L"none.gif").empty());
}

TEST_F(UnpackTest, SaysOnlyWhatIsInTheFile) {
    Write(L"nine.zmi", Bytes(9, 'z'));
    Write(L"blank.zmi", ZmiBuilder{}.Build());
    const char* const fault = "the file has 9 bytes, fewer than its 112-byte header";
    EXPECT_EQ("nine.zmi\n  9 bytes\n  wrong: " + std::string(fault) + '\n',
              Unpack({L"--info", L"nine.zmi"}).out);
    Unpack({L"--info", L"--json", L"nine.zmi", L"blank.zmi"})
        .Told(R"("file": "nine.zmi", "size": 9, "fault": ")" + std::string(fault),
              R"("pixelOffset": 0, "pixelBytes": 0})");

    isReaderGone_ = true;
    EXPECT_EQ("", Unpack({L"--info", L"blank.zmi"}).Ended(1).err);
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
        {{L"--frames", L"2-1", L"a.zmi"}, "--frames 2-1 is backwards"},
        {{L"--frames", L"1,", L"a.zmi"}, "not \"\" (see zmi-unpack --help)"},
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
