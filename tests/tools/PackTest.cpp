#include "tests/builder/ZmiVerdict.h"
#include "tests/tools/ToolTest.h"

namespace vantrel::tests {
namespace {

using namespace std::literals;

std::uint32_t Header(const Bytes& file, Field field) {
    return GetField(file, file_header::size, field);
}

class PackTest : public ToolTest {
protected:
    // A bitmap file of 0xRRGGBB colours from the top left: one for each pixel, or a mixture of them.
    void WriteBitmap(const std::wstring& name, std::uint32_t width, std::uint32_t height,
                     const std::vector<std::uint32_t>& colours) const {
        constexpr std::size_t headers = 54;
        const std::size_t count = std::size_t{width} * height;
        Bytes bytes(headers + 4 * count);
        for (const auto& [at, value] :
             {std::pair(0u, 0x4D42u), {10, 54}, {14, 40}, {18, width}, {22, 0 - height}, {26, 32u << 16 | 1}})
            SetField(bytes, at, {0, 4}, value);
        for (std::size_t i = 0; i < count; ++i)
            SetField(bytes, headers + 4 * i, {0, 4},
                     colours[colours.size() == count ? i : PatternByte(width, i) % colours.size()]);
        Write(name, bytes);
    }
};

TEST_F(PackTest, WritesTheDocumentedBytes) {
    const auto header = "zpix-zmi\0\1\0\0\0p\0\0\0\1p\0\0\0"s;
    const auto zeros = [](std::size_t count) { return std::string(count, '\0'); };
    const auto example = header + "C\0\0\0"s + zeros(86) + "Hello"s + zeros(29) + "\xa7\0\0\0"s + zeros(12) +
                         "\x10\2\0\3\0"s + "\0\xf8\xe0\7\x1f\0\xff\xff\xde\xf7\0\0"s + "zpix"s;
    const auto blank = header + "7\0\0\0"s + zeros(86 + 34 + 16) + "\x80\0\4\x58\2"s + "zpix"s;
    WriteBitmap(L"p.bmp", 2, 3, {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF, 0xF0F8F0, 0x000000});
    Pack({L"--title", L"Hello", L"p.bmp", L"example.zmi"}).Ended(0);
    EXPECT_EQ(Bytes(example.begin(), example.end()), Read(L"example.zmi"));
    Pack({L"--blank", L"blank.zmi"}).Ended(0);
    EXPECT_EQ(Bytes(blank.begin(), blank.end()), Read(L"blank.zmi"));
}

TEST_F(PackTest, GivesWhatPacksToTheSameBytesAgain) {
    WriteBitmap(L"grey.bmp", 13, 9, {0x000000, 0xFFFFFF});
    WriteBitmap(L"colour.bmp", 13, 9, {0xFF0000, 0x08F8FF, 0xFFFFFF, 0x1020A0, 0x000000});
    const std::pair<std::wstring, Arguments> pictures[] = {{L"grey.bmp", {L"565", L"8", L"1"}},
                                                           {L"colour.bmp", {L"565", L"8"}}};
    for (const auto& [picture, modes] : pictures) {
        Bytes shown;
        for (const std::wstring& mode : modes) {
            SCOPED_TRACE(testing::PrintToString(picture + mode));
            Pack({L"--mode", mode, picture, L"a.zmi"}).Ended(0);
            Preview({L"--sizes", L"13", L"a.zmi"}).Ended(0);
            Pack({L"--mode=" + mode, L"a-13.png", L"b.zmi"}).Ended(0);
            EXPECT_EQ(Read(L"a.zmi"), Read(L"b.zmi"));
            // Each of these modes has the picture's colours, so all of them show the same.
            if (shown.empty())
                shown = Read(L"a-13.png");
            EXPECT_EQ(shown, Read(L"a-13.png"));
        }
    }
}

TEST_F(PackTest, KeepsEveryFrameItsOwnSizeAndPixels) {
    const std::pair<std::uint32_t, std::uint32_t> sizes[] = {{3, 5}, {17, 2}, {8, 9}};
    const Arguments names = {L"0.bmp", L"1.bmp", L"2.bmp"};
    for (std::size_t i = 0; i < names.size(); ++i)
        WriteBitmap(names[i], sizes[i].first, sizes[i].second, {0xFFFFFF, 0x000000});
    for (const std::wstring mode : {L"1", L"8", L"565"}) {
        Pack({L"--mode", mode, names[0], names[1], names[2], L"all.zmi"}).Ended(0);
        const Bytes all = Read(L"all.zmi");
        ASSERT_EQ(Verdict::Loads, Judge(all));
        const std::size_t table = Header(all, image_header::pixelOffset);
        EXPECT_EQ(names.size(), GetField(all, table, frame_table::frameCount));
        for (std::size_t i = 0; i < names.size(); ++i) {
            Pack({L"--mode", mode, names[i], L"one.zmi"}).Ended(0);
            const Bytes one = Read(L"one.zmi");
            const std::size_t record = table + frame_table::size + i * frame_record::size;
            EXPECT_EQ(sizes[i], std::pair(GetField(all, record, frame_record::width),
                                          GetField(all, record, frame_record::height)));
            EXPECT_EQ(Header(one, image_header::flags), GetField(all, record, frame_record::flags));
            EXPECT_TRUE(std::equal(one.begin() + Header(one, image_header::pixelOffset), one.end() - 4,
                                   all.begin() + GetField(all, record, frame_record::dataOffset)));
        }
    }
}

TEST_F(PackTest, MarksAndFillsTheTransparentColour) {
    WriteBitmap(L"p.bmp", 3, 1, {0xFF00FF, 0x000000, 0xFFFFFF});
    Pack({L"--transparent", L"ff00ff", L"p.bmp", L"a.zmi"}).Ended(0);
    Pack({L"--transparent=#FF00FF", L"--mode", L"8", L"p.bmp", L"b.zmi"}).Ended(0);
    const Bytes direct = Read(L"a.zmi");
    EXPECT_EQ(0x30u, Header(direct, image_header::flags));
    EXPECT_EQ(0xF81Fu, Header(direct, image_header::transparentKey));
    const Bytes indexed = Read(L"b.zmi");
    const std::uint32_t key = Header(indexed, image_header::transparentKey);
    EXPECT_EQ(0x28u, Header(indexed, image_header::flags));
    EXPECT_EQ(0xF81Fu, GetField(indexed, Header(indexed, image_header::paletteOffset) + 2 * key, {0, 2}));
    EXPECT_EQ(key, GetField(indexed, Header(indexed, image_header::pixelOffset), {0, 1}));

    // A wide picture's icon is transparent at its top.
    Preview({L"a.zmi"}).Ended(0);
    Pack({L"--transparent", L"00ff00", L"a-icon-32.png", L"green.zmi"}).Ended(0);
    Pack({L"a-icon-32.png", L"white.zmi"}).Ended(0);
    for (const auto& [name, corner] : {std::pair(L"green.zmi", 0x07E0u), std::pair(L"white.zmi", 0xFFFFu)})
        EXPECT_EQ(corner, GetField(Read(name), Header(Read(name), image_header::pixelOffset), {0, 2}));
}

TEST_F(PackTest, SaysWhatFailedAndLeavesNothingBehind) {
    const struct {
        Arguments arguments; // in front of the output
        DWORD exitCode;
        const char* words;
        const wchar_t* output = L"old.zmi";
    } cases[] = {
        {{L"none ü図.bmp"}, 1, "none ü図.bmp: "},
        {{L"old.zmi"}, 2, "old.zmi: this is one of the files to read"},
        {{L"."}, 1, ".: this is a folder"},
        {{L"p.bmp", L"cut.bmp"}, 1, "cut.bmp: "},
        {{L"p.bmp"}, 1, "folder.zmi: ", L"folder.zmi"},
        {{L"p.bmp"}, 1, "p.bmp/new.zmi: ", L"p.bmp/new.zmi"},
        {{}, 2, "no input given for old.zmi"},
        {{}, 2, "ends in .zmi, not \"p.bmp\"", L"p.bmp"},
        {{L""}, 2, "a file name is empty"},
        {{L"--colour", L"p.bmp"}, 2, "unknown option --colour"},
        {{L"--mode", L"16", L"p.bmp"}, 2, "--mode is 1, 8 or 565, not \"16\""},
        {{L"--transparent", L"red", L"p.bmp"}, 2, "RRGGBB"},
        {{L"--transparent", L"ff00ff", L"--mode", L"1", L"p.bmp"}, 2, "no meaning with --mode 1"},
        {{L"--title", std::wstring(34, L'x'), L"p.bmp"}, 2, "33 bytes"},
        {{L"--title", L"\xD800", L"p.bmp"}, 2, "code page"},
        {{L"--blank", L"p.bmp"}, 2, "--blank takes no input"},
    };
    WriteBitmap(L"p.bmp", 2, 1, {0x000000, 0xFFFFFF});
    Bytes cut = Read(L"p.bmp");
    cut.resize(cut.size() - 4);
    Write(L"cut.bmp", cut);
    const Bytes old = ZmiBuilder{}.Build();
    Write(L"old.zmi", old);
    std::filesystem::create_directory(folder_ / L"folder.zmi");
    for (auto [arguments, exitCode, words, output] : cases) {
        arguments.push_back(output);
        const ToolRun run = Pack(arguments);
        run.Ended(exitCode, words);
        EXPECT_EQ("", run.out);
        EXPECT_EQ(1, std::count(run.err.begin(), run.err.end(), '\n')) << run.err;
        EXPECT_EQ(old, Read(L"old.zmi")) << words;
        EXPECT_EQ(4, FileCount()) << words;
    }
}

TEST_F(PackTest, LeavesNoHalfWrittenFileWhenInterrupted) {
    WriteBitmap(L"p.bmp", 700, 700, {0x123456, 0xFEDCBA, 0x808080});
    Arguments arguments(200, L"p.bmp");
    arguments.insert(arguments.end(), {L"--mode", L"1", L"p.zmi"});
    const ToolRun run = Run(Beside(L"zmi-pack.exe"), arguments, CREATE_NO_WINDOW, [&](DWORD process) {
        for (int i = 0; i < 1000 && FileCount() == 1; ++i)
            Sleep(10);
        EXPECT_EQ(2, FileCount()) << "it never began to write";
        EXPECT_EQ(0u, Run(Beside(L"interrupt.exe"), {std::to_wstring(process)}).exitCode);
    });
    run.Ended(130);
    EXPECT_EQ(1, FileCount());
}

} // namespace
} // namespace vantrel::tests
