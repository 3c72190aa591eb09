#include "tests/builder/ZmiVerdict.h"
#include "tests/tools/ToolTest.h"

namespace vantrel::tests {
namespace {

using namespace std::literals;

std::uint32_t Header(const Bytes& file, Field field) {
    return GetField(file, file_header::size, field);
}

// The pixel values of a frame, row by row; not for black and white.
struct Frame {
    Frame(const Bytes& file, std::size_t index) {
        std::size_t at =
            file_header::size + image_header::pixelOffset.offset - frame_record::dataOffset.offset;
        const bool several = Header(file, image_header::flags) & 1;
        if (several)
            at = Header(file, image_header::pixelOffset) + frame_table::size + index * frame_record::size;
        const std::size_t pixels = GetField(file, at, frame_record::dataOffset);
        width = several ? GetField(file, at, frame_record::width) : Header(file, image_header::width);
        height = several ? GetField(file, at, frame_record::height) : Header(file, image_header::height);
        const std::size_t bytes = Header(file, image_header::flags) >> 4 & 1 ? 2 : 1;
        for (std::size_t i = 0; i < width * height; ++i)
            values.push_back(GetField(file, pixels + i * bytes, {0, bytes}));
    }

    std::size_t width;
    std::size_t height;
    std::vector<std::uint32_t> values;
};

// A sequence of numbers in one byte order.
struct Numbers {
    bool bigEndian = false;
    std::string text;

    Numbers& Add(std::uint32_t value, std::size_t width) {
        for (std::size_t i = 0; i < width; ++i)
            text += static_cast<char>(value >> 8 * (bigEndian ? width - 1 - i : i));
        return *this;
    }
};

// Every number takes two bytes.
std::string Tiff(bool bigEndian, const std::vector<std::pair<std::uint32_t, std::uint32_t>>& entries) {
    Numbers tiff{bigEndian, bigEndian ? "MM" : "II"};
    tiff.Add(42, 2).Add(8, 4).Add(static_cast<std::uint32_t>(entries.size()), 2);
    for (const auto& [tag, value] : entries)
        tiff.Add(tag, 2).Add(3, 2).Add(1, 4).Add(value, 2).Add(0, 2);
    return tiff.Add(0, 4).text;
}

// 24 x 16 pixels, dark to light: a b b over c d d, 8 x 8 each.
std::string Jpeg(const std::string& exif) {
    return "\xFF\xD8"s + Numbers{true, "\xFF\xE1"}.Add(static_cast<std::uint32_t>(exif.size() + 8), 2).text +
           "Exif\0\0"s + exif + "\xFF\xDB\0\x43\0"s + std::string(64, '\x80') +
           "\xFF\xC0\0\x0B\x08\0\x10\0\x18\1\1\x11\0"
           "\xFF\xC4\0\x16\0\1\1\1\0\0\0\0\0\0\0\0\0\0\0\0\0\3\4\0"
           "\xFF\xC4\0\x14\x10\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
           "\xFF\xDA\0\x08\1\1\0\0\x3F\0\x9C\xAC\x52\xB3\xFF\xD9"s;
}

struct GifLayer {
    unsigned x, y, disposal;
    std::string rows; // "rg/.b": red and green over transparent and blue
};

std::string Gif(unsigned width, unsigned height, const std::vector<GifLayer>& layers) {
    Numbers gif{false, "GIF89a"};
    gif.Add(width, 2).Add(height, 2).Add(0x0181, 3).text += "\0\0\0\xFF\0\0\0\xFF\0\0\0\xFF"s;
    for (const GifLayer& layer : layers) {
        const auto columns = static_cast<std::uint32_t>(std::min(layer.rows.find('/'), layer.rows.size()));
        const auto rows =
            static_cast<std::uint32_t>(std::count(layer.rows.begin(), layer.rows.end(), '/') + 1);
        gif.Add(0x04F921, 3)
            .Add(layer.disposal << 2 | 1, 4)
            .Add(0, 1)
            .Add(0x2C, 1)
            .Add(layer.x, 2)
            .Add(layer.y, 2);
        gif.Add(columns, 2).Add(rows, 2).Add(0x0200, 2);
        // Three bits per code: a clear code (4) before every pixel, and the end code (5).
        std::string codes;
        for (const char pixel : layer.rows)
            if (pixel != '/')
                codes += {4, static_cast<char>(".rgb"sv.find(pixel))};
        codes += 5;
        Bytes packed((codes.size() * 3 + 7) / 8);
        for (std::size_t bit = 0; bit < codes.size() * 3; ++bit)
            packed[bit / 8] |= static_cast<std::uint8_t>((codes[bit / 3] >> bit % 3 & 1) << bit % 8);
        gif.Add(static_cast<std::uint32_t>(packed.size()), 1).text.append(packed.begin(), packed.end());
        gif.Add(0, 1);
    }
    return gif.text + ";";
}

class PackTest : public ToolTest {
protected:
    void WriteText(const std::wstring& name, const std::string& text) const {
        Write(name, Bytes(text.begin(), text.end()));
    }

    // A bitmap file of 0xRRGGBB colours from the top left: one for each pixel, or a pseudo-random mix of
    // them.
    void WriteBitmap(const std::wstring& name, std::uint32_t width, std::uint32_t height,
                     const std::vector<std::uint32_t>& colors) const {
        constexpr std::size_t headers = 54;
        const std::size_t count = std::size_t{width} * height;
        Bytes bytes(headers + 4 * count);
        for (const auto& [at, value] :
             {std::pair(0u, 0x4D42u), {10, 54}, {14, 40}, {18, width}, {22, 0 - height}, {26, 32u << 16 | 1}})
            SetField(bytes, at, {0, 4}, value);
        for (std::size_t i = 0; i < count; ++i)
            SetField(bytes, headers + 4 * i, {0, 4},
                     colors[colors.size() == count ? i : PatternByte(width, i) % colors.size()]);
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
    Pack({L"--blank", L"--truncate-title", L"--title=" + std::wstring(40, L'x'), L"blank.zmi"}).Ended(0);
    Bytes titled = Read(L"blank.zmi");
    EXPECT_EQ(std::string(33, 'x'), reinterpret_cast<const char*>(&titled[file_header::size]));
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
            Preview({L"--force", L"--sizes", L"13", L"a.zmi"}).Ended(0);
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

TEST_F(PackTest, LaysGifFramesOverEachOther) {
    WriteText(L"a.gif", Gif(4, 2,
                            {{0, 0, 0, "rrr/rrr"}, // the canvas is larger
                             {1, 0, 2, "g.b"},
                             {0, 0, 3, "b/b"},
                             {3, 1, 0, "gg/gg"}, // and the frame sticks out of it
                             {0, 0, 0, "..../.b.."}}));
    WriteText(L"small.gif", Gif(1, 1, {{1, 0, 0, "r"}})); // more than its canvas
    Pack({L"--transparent", L"ffffff", L"a.gif", L"small.gif", L"a.zmi"}).Ended(0);
    const char* const seen[] = {"rrr.rrr.", "rgrbrrr.", "b...brr.", "r...rrrg", "r...rbrg", ".r"};
    for (std::size_t i = 0; i < std::size(seen); ++i) {
        std::string shown;
        for (const std::uint32_t value : Frame(Read(L"a.zmi"), i).values)
            shown += value == 0xF800 ? 'r' : value == 0x07E0 ? 'g' : value == 0x001F ? 'b' : '.';
        EXPECT_EQ(seen[i], shown) << i;
    }
}

TEST_F(PackTest, TurnsPhotosUpright) {
    constexpr std::uint32_t orientation = 0x0112;
    const char* const corners[] = {"abcd", "abcd", "badc", "dcba", "cdab",
                                   "acbd", "cadb", "dbca", "bdac", "abcd"};
    struct Case {
        std::string file;
        std::string corners; // top left, top right, bottom left, bottom right
    };
    std::vector<Case> cases;
    for (std::uint32_t i = 0; i < std::size(corners); ++i)
        for (const bool bigEndian : {false, true})
            cases.push_back({Jpeg(Tiff(bigEndian, {{0x10F, 7}, {orientation, i}})), corners[i]});
    const std::string sound = Tiff(false, {{orientation, 3}});
    for (const auto& [at, bytes] : {std::pair(4, "\xFF\xFF\xFF\xFF"s), {8, "\xFF\xFF\0\0"s}, {12, "\4"s}}) {
        std::string broken = sound;
        cases.push_back({Jpeg(broken.replace(static_cast<std::size_t>(at), bytes.size(), bytes)), "abcd"});
    }
    cases.push_back({Jpeg(sound.substr(0, 17)), "abcd"});
    cases.push_back({Tiff(false, {{256, 2},
                                  {257, 2},
                                  {258, 8},
                                  {259, 1},
                                  {262, 1},
                                  {273, 134},
                                  {orientation, 6},
                                  {277, 1},
                                  {278, 2},
                                  {279, 4}}) +
                         "\0\x50\xA0\xF0"s,
                     "cadb"});

    Arguments arguments;
    for (const Case& c : cases)
        WriteText(arguments.emplace_back(std::to_wstring(arguments.size())), c.file);
    arguments.push_back(L"a.zmi");
    for (const bool rotate : {true, false}) {
        Pack(arguments).Ended(0);
        const Bytes file = Read(L"a.zmi");
        for (std::size_t i = 0; i < cases.size(); ++i) {
            const Frame frame(file, i);
            std::string shown;
            for (const std::size_t at : {std::size_t{0}, frame.width - 1, frame.values.size() - frame.width,
                                         frame.values.size() - 1})
                shown += static_cast<char>('a' + (frame.values[at] >> 5 & 63) / 20);
            EXPECT_EQ(rotate ? cases[i].corners : "abcd", shown) << i;
        }
        arguments.insert(arguments.begin(), L"--no-rotate");
    }
}

TEST_F(PackTest, MarksAndFillsTheTransparentColor) {
    WriteBitmap(L"p.bmp", 4, 1, {0xFF00FF, 0x000000, 0xFFFFFF, 0xFE01FE});
    Pack({L"--transparent", L"ff00ff", L"p.bmp", L"a.zmi"}).Ended(0);
    Pack({L"--transparent=#FF00FF", L"--mode", L"8", L"p.bmp", L"b.zmi"}).Ended(0);
    const Bytes direct = Read(L"a.zmi");
    EXPECT_EQ(0x30u, Header(direct, image_header::flags));
    EXPECT_EQ(0xF81Fu, Header(direct, image_header::transparentKey));
    const Bytes indexed = Read(L"b.zmi");
    const std::uint32_t key = Header(indexed, image_header::transparentKey);
    EXPECT_EQ(0x28u, Header(indexed, image_header::flags));
    EXPECT_EQ(0xF81Fu, GetField(indexed, Header(indexed, image_header::paletteOffset) + 2 * key, {0, 2}));
    EXPECT_EQ(key, Frame(indexed, 0).values[0]);
    // A colour close to the key stays close to it, and opaque.
    EXPECT_EQ(0xF83Fu, Frame(direct, 0).values[3]);
    const std::uint32_t twin = Frame(indexed, 0).values[3];
    EXPECT_NE(key, twin);
    EXPECT_EQ(0xF81Fu, GetField(indexed, Header(indexed, image_header::paletteOffset) + 2 * twin, {0, 2}));

    // A wide picture's icon is transparent at the top.
    Preview({L"a.zmi"}).Ended(0);
    Pack({L"--transparent", L"00ff00", L"a-icon-32.png", L"green.zmi"}).Ended(0);
    Pack({L"a-icon-32.png", L"white.zmi"}).Ended(0);
    for (const auto& [name, corner] : {std::pair(L"green.zmi", 0x07E0u), std::pair(L"white.zmi", 0xFFFFu)})
        EXPECT_EQ(corner, GetField(Read(name), Header(Read(name), image_header::pixelOffset), {0, 2}));
}

TEST_F(PackTest, ChoosesColorsNearThoseOfThePicture) {
    std::vector<std::uint32_t> colors;
    for (std::uint32_t i = 0; i < 4096; ++i) {
        const std::uint32_t x = PatternByte(0, i);
        const std::uint32_t y = PatternByte(1, i);
        colors.push_back(x * x >> 8 << 16 | x * y >> 8 << 8 | y * y * y >> 16);
    }
    WriteBitmap(L"p.bmp", 64, 64, colors);
    Pack({L"--mode", L"8", L"--no-dither", L"p.bmp", L"a.zmi"}).Ended(0);
    const Bytes file = Read(L"a.zmi");
    const Frame frame(file, 0);
    double missed = 0;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const std::uint32_t shown =
            GetField(file, Header(file, image_header::paletteOffset) + 2 * frame.values[i], {0, 2});
        for (const auto& [source, value] : {std::pair(colors[i] >> 16, shown >> 11 << 3),
                                            {colors[i] >> 8, shown >> 5 << 2},
                                            {colors[i], shown << 3}}) {
            const double distance = double(source & 255) - double(value & 255);
            missed += distance * distance;
        }
    }
    EXPECT_LT(missed / 4096, 80) << "squared, on average; median cut comes to 94";
}

TEST_F(PackTest, TakesPatternsAndFoldersInTheOrderOfTheirNumbers) {
    std::filesystem::create_directory(folder_ / L"f");
    for (const std::uint32_t i : {10u, 9u, 1u})
        WriteBitmap(L"f\\b" + std::to_wstring(i) + L".BMP", i, 1, {0});
    WriteText(L"f\\b2.txt", "no picture");
    for (const wchar_t* const inputs : {L"f", L"f\\b*.bmp", L"f/b?*.bmp"}) {
        const ToolRun run = Pack({inputs, L"f\\b9.BMP", L"a.zmi"});
        run.Ended(0);
        EXPECT_TRUE(Contains(run.out, "4 frames (2 of 9 x 1, 1 of 1 x 1, 1 of 10 x 1), 16 bits")) << run.out;
        const std::size_t widths[] = {1, 9, 10, 9};
        for (std::size_t i = 0; i < std::size(widths); ++i)
            EXPECT_EQ(widths[i], Frame(Read(L"a.zmi"), i).width);
    }
}

TEST_F(PackTest, SaysWhatFailedAndLeavesNothingBehind) {
    const struct {
        Arguments arguments; // in front of the output
        DWORD exitCode;
        const char* words;
        const wchar_t* output = L"old.zmi";
    } cases[] = {
        {{L"none ü図.bmp"}, 1, "none ü図.bmp: "},
        {{L"old.zmi"}, 2, "old.zmi: this is one of the input files"},
        {{L"folder.zmi"}, 1, "folder.zmi: the folder contains no pictures"},
        {{L"*.png"}, 1, "*.png: no such file"},
        {{L"p.bmp", L"cut.bmp"}, 1, "pack: cut.bmp: cannot be read: the picture is damaged or cut short"},
        {{L"p.bmp"}, 1, "folder.zmi: ", L"folder.zmi"},
        {{L"p.bmp"}, 1, "p.bmp/new.zmi: ", L"p.bmp/new.zmi"},
        {{}, 2, "no input given for old.zmi"},
        {{}, 2, "end in .zmi, not \"p.bmp\"", L"p.bmp"},
        {{L""}, 2, "a file name is empty"},
        {{L"--colour", L"p.bmp"}, 2, "unknown option --colour"},
        {{L"--mode", L"16", L"p.bmp"}, 2, "--mode must be 1, 8 or 565, not \"16\""},
        {{L"--transparent", L"red", L"p.bmp"}, 2, "RRGGBB"},
        {{L"--transparent", L"ff00ff", L"--mode", L"1", L"p.bmp"}, 2, "no meaning with --mode 1"},
        {{L"--title", std::wstring(34, L'x'), L"p.bmp"}, 2, "33 bytes"},
        {{L"--title", L"\xD800", L"p.bmp"}, 2, "code page"},
        {{L"--title", L"\x1B[31m", L"p.bmp"}, 2, "control character"},
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
