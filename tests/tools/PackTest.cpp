#include "tests/builder/FileFacts.h"
#include "tests/builder/ZmiVerdict.h"
#include "tests/tools/ToolTest.h"

#include <map>

namespace vantrel::tests {
namespace {

using namespace std::literals;

constexpr const wchar_t* modeNames[] = {L"1", L"8", L"565"}; // 0 to 2 in a file

// A frame's pixels as words 0xFFRRGGBB, or 0x00RRGGBB where they are transparent.
std::vector<std::uint32_t> Shown(const Bytes& file, std::size_t frame) {
    return FramePixelFacts(file, frame).Shown();
}

// A sequence of numbers in one byte order.
struct Numbers {
    bool bigEndian = false;
    std::string text{};

    Numbers& Add(std::uint64_t value, std::size_t width) {
        for (std::size_t i = 0; i < width; ++i)
            text += static_cast<char>(value >> 8 * (bigEndian ? width - 1 - i : i));
        return *this;
    }
};

// Tags and their values; every number takes two bytes.
using TiffEntries = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

std::string Tiff(bool bigEndian, const TiffEntries& entries) {
    Numbers tiff{bigEndian, bigEndian ? "MM" : "II"};
    tiff.Add(42, 2).Add(8, 4).Add(entries.size(), 2);
    for (const auto& [tag, value] : entries)
        tiff.Add(tag, 2).Add(3, 2).Add(1, 4).Add(value, 2).Add(0, 2);
    return tiff.Add(0, 4).text;
}

constexpr std::uint32_t orientationTag = 0x0112;

// A square in shades of gray, of which 2 x 2 pixels are there: a b over c d.
std::string GrayTiff(std::uint32_t edge, std::uint32_t orientation) {
    const TiffEntries entries = {
        {256, edge}, {257, edge}, {258, 8}, {259, 1}, {262, 1}, {273, 134}, {orientationTag, orientation},
        {277, 1},    {278, edge}, {279, 4}};
    return Tiff(true, entries) + "\0\x50\xA0\xF0"s;
}

// 24 x 16 pixels, dark to light: a b b over c d d, 8 x 8 each.
std::string Jpeg(const std::string& exif) {
    return "\xFF\xD8"s + Numbers{true, "\xFF\xE1"}.Add(exif.size() + 8, 2).text + "Exif\0\0"s + exif +
           "\xFF\xDB\0\x43\0"s + std::string(64, '\x80') +
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
    for (const auto& [x, y, disposal, pixels] : layers) {
        const std::size_t rows = static_cast<std::size_t>(std::ranges::count(pixels, '/')) + 1;
        gif.Add(0x04F921, 3).Add(disposal << 2 | 1, 5).Add(0x2C, 1).Add(x, 2).Add(y, 2);
        gif.Add((pixels.size() + 1) / rows - 1, 2).Add(rows, 2).Add(0x0700, 2);
        // A clear code before every pixel keeps all codes at 8 bits.
        std::string codes;
        for (const char pixel : pixels)
            if (pixel != '/')
                codes += {'\x80', static_cast<char>(".rgb"sv.find(pixel))};
        gif.Add(codes.size() + 1, 1).text += codes + "\x81\0"s;
    }
    return gif.text + ";";
}

class PackTest : public ToolTest {
protected:
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
    WriteBitmap(L"0.bmp", 13, 9, {0x000000, 0xFFFFFF});
    WriteBitmap(L"1.bmp", 5, 7, {0xFF0000, 0x08F8FF, 0xFFFFFF, 0x1020A0, 0x000000});
    for (const std::wstring mode : modeNames) {
        SCOPED_TRACE(testing::PrintToString(mode));
        Arguments options = {L"--mode", mode};
        if (mode != modeNames[0])
            options = options + Arguments{L"--transparent", L"08f8ff"};
        const auto pack = [&](const Arguments& inputs) {
            Pack(options + inputs + Arguments{L"b.zmi"}).Ended(0);
            return Read(L"b.zmi");
        };
        const Bytes single = pack({L"1.bmp"});
        Unpack({L"--gif", L"b.gif", L"b.zmi"}).Ended(0);
        EXPECT_EQ(single, pack({L"b.gif"}));

        const Bytes packed = pack({L"0.bmp", L"1.bmp"});
        ASSERT_EQ(Verdict::Loads, Judge(packed));
        EXPECT_EQ(5u, FileFacts(packed).Width(1));
        EXPECT_EQ(7u, FileFacts(packed).Height(1));
        EXPECT_EQ(Shown(single, 0), Shown(packed, 1));
        Write(L"a.zmi", packed);
        Unpack({L"--force", L"a.zmi"}).Ended(0);
        EXPECT_EQ(packed, pack({L"a-001.png", L"a-002.png"}));
        EXPECT_EQ(packed, pack({L"a.zmi"}));
        // Without options the frames keep all that they are.
        Pack({L"a.zmi", L"b.zmi"}).Ended(0);
        EXPECT_EQ(packed, Read(L"b.zmi"));
    }
}

TEST_F(PackTest, JoinsZmiFilesWithoutChangingAPixel) {
    for (const unsigned mode : {0u, 1u, 2u}) {
        SCOPED_TRACE(mode);
        ZmiBuilder one{.mode = mode,
                       .frames = {{8, 5}, {16, 3}},
                       .title = std::string(34, 'o'),
                       .transparentKey = 7,
                       .gap = 3};
        ZmiBuilder two{.mode = mode, .frames = {{8, 2}}, .title = "Two", .rest = 4};
        // Each frame has its own colours and makes the first pixel's transparent, which in the second file is
        // also the opaque second pixel's.
        one.frames[1].palette = mode == 1 ? std::optional(PatternColors(5)) : std::nullopt;
        for (std::size_t i = 0; i < 2; ++i)
            one.frames[i].transparentKey = FramePixelFacts(one.Build(), i).Value(0, 0);
        two.palette = PatternColors(6);
        two.transparentKey = FramePixelFacts(two.Build(), 0).Value(0, 0);
        two.palette[FramePixelFacts(two.Build(), 0).Value(1, 0) % 256] =
            two.palette[*two.transparentKey % 256];
        Write(L"one.zmi", one.Build());
        Write(L"two.zmi", two.Build());
        WriteBitmap(L"red.bmp", 8, 1, {0xFF0000});
        Pack({L"one.zmi", L"two.zmi", L"joined.zmi"}).Ended(0);
        const Bytes joined = Read(L"joined.zmi");
        const FileFacts facts(joined);
        ASSERT_EQ(Verdict::Loads, Judge(joined));
        ASSERT_EQ(3u, facts.FrameCount());
        EXPECT_EQ(mode, facts.mode);
        EXPECT_EQ(one.title, std::string(reinterpret_cast<const char*>(&joined[facts.payload]), 34));
        EXPECT_EQ(Shown(one.Build(), 0), Shown(joined, 0));
        EXPECT_EQ(Shown(one.Build(), 1), Shown(joined, 1));
        EXPECT_EQ(Shown(two.Build(), 0), Shown(joined, 2));
        for (const std::size_t i : {1u, 2u})
            EXPECT_EQ(facts.Record(0, frame_record::paletteOffset), facts.PaletteAt(i));
        // With too many colours for one table, the transparent pixels stay the same.
        two.frames = {{64, 64}};
        Write(L"two.zmi", two.Build());
        Pack({L"--mode", modeNames[mode], L"red.bmp", L"one.zmi", L"two.zmi", L"joined.zmi"}).Ended(0);
        const auto alpha = [](std::uint32_t word) { return word >> 24; };
        EXPECT_TRUE(
            std::ranges::equal(Shown(two.Build(), 0), Shown(Read(L"joined.zmi"), 3), {}, alpha, alpha));

        Pack({L"--title", L"New", L"one.zmi", L"titled.zmi"}).Ended(0);
        one.title = "New";
        EXPECT_EQ(one.Build(), Read(L"titled.zmi"));
    }
    Write(L"three.zmi", ZmiBuilder{.mode = 3, .frames = {{1, 1}}}.Build());
    Write(L"mixed.zmi", ZmiBuilder{.frames = {{1, 1}, {1, 1, {}, {}, 0}}}.Build());
    Pack({L"three.zmi", L"x.zmi"}).Ended(1, "three.zmi: frame 1 is in pixel mode 3");
    Pack({L"mixed.zmi", L"x.zmi"}).Ended(1, "mixed.zmi: frame 2 is in another pixel mode than its file");
    Pack({L"--title", L"T", L"one.zmi", L"one.zmi"}).Ended(2, "one.zmi: this is one of the input files");
}

TEST_F(PackTest, PacksEachInputIntoItsOwnFile) {
    std::filesystem::create_directory(folder_ / L"in");
    WriteBitmap(L"in/pic.bmp", 2, 1, {0x000000, 0xFFFFFF});
    WriteBitmap(L"in/pic.dib", 3, 1, {0x000000});
    WriteText(L"in/broken.bmp", "BM");
    WriteText(L"in/two.gif", Gif(1, 1, {{0, 0, 0, "r"}, {0, 0, 0, "g"}}));
    Write(L"in/z.zmi", ZmiBuilder{}.Build());
    for (int i = 0; i < 2; ++i) { // the same bytes may be there already
        Pack({L"--each", L"--out", L"out", L"in/*.*"})
            .Ended(1, "broken.bmp: cannot be read", "z.zmi: this is a ZMI file already");
        EXPECT_EQ(3, FileCount(L"out"));
    }
    EXPECT_EQ(2u, FileFacts(Read(LR"(out\pic.zmi)")).Width(0));
    EXPECT_EQ(3u, FileFacts(Read(LR"(out\pic (2).zmi)")).Width(0));
    EXPECT_EQ(2u, FileFacts(Read(LR"(out\two.zmi)")).FrameCount());
    Pack({L"--each", L"--title", L"T", L"in"}).Ended(2, "--title with --each needs a single input");
    Pack({L"--each", L"--out=out", L"--mode=1", L"in/pic.bmp"})
        .Ended(1, "already exists with other contents");
    Pack({L"--each", L"--force", L"--out=out", L"--title=T", L"in/pic.bmp"}).Ended(0);
    EXPECT_EQ('T', Read(LR"(out\pic.zmi)")[file_header::size]);
}

TEST_F(PackTest, LaysGifFramesOverEachOther) {
    WriteText(L"a.gif", Gif(4, 2,
                            {{0, 0, 0, "rrr/rrr"}, // the canvas is larger
                             {1, 0, 2, "g.b"},
                             {0, 0, 3, "b/b"},
                             {3, 1, 0, "gg/gg"}, // and the frame sticks out of it
                             {0, 0, 0, "..../.b.."},
                             {4, 1, 0, "gg"}, // and this one is beside it
                             {2, 1, 3, "gg"}}));
    WriteText(L"small.gif", Gif(1, 1, {{1, 0, 0, "r"}})); // more than its canvas
    const std::map<std::uint32_t, char> letters = {
        {0xFFFF0000, 'r'}, {0xFF00FF00, 'g'}, {0xFF0000FF, 'b'}, {0x00FFFFFF, '.'}};
    const char* const seen[] = {"rrr.rrr.", "rgrbrrr.", "b...brr.", "r...rrrg",
                                "r...rbrg", "r...rbrg", "r...rbgg", ".r"};
    for (const Arguments& inputs : {Arguments{L"a.gif", L"small.gif"}, {L"a.gif"}})
        for (const wchar_t* const mode : {L"565", L"8"}) {
            const Arguments options = {L"--transparent", L"ffffff", L"--mode", mode};
            Pack(options + inputs + Arguments{L"a.zmi"}).Ended(0);
            for (std::size_t i = 0; i < std::size(seen) + inputs.size() - 2; ++i) {
                std::string shown;
                for (const std::uint32_t word : Shown(Read(L"a.zmi"), i))
                    shown += letters.at(word);
                EXPECT_EQ(seen[i], shown) << i;
            }
        }
}

TEST_F(PackTest, TurnsPhotosUpright) {
    const char* const corners[] = {"abcd", "abcd", "badc", "dcba", "cdab",
                                   "acbd", "cadb", "dbca", "bdac", "abcd"};
    // A file, and its corners: top left, top right, bottom left, bottom right.
    std::vector<std::pair<std::string, std::string>> cases = {{GrayTiff(2, 6), "cadb"}};
    for (std::uint32_t i = 0; i < std::size(corners); ++i)
        for (const bool bigEndian : {false, true})
            cases.emplace_back(Jpeg(Tiff(bigEndian, {{0x10F, 7}, {orientationTag, i}})), corners[i]);
    const std::string sound = Tiff(false, {{orientationTag, 3}});
    cases.emplace_back(Jpeg(sound.substr(0, 17)), "abcd");
    for (const auto& [at, bytes] : {std::pair(4u, "\xFF\xFF\xFF\xFF"s), {8, "\xFF\xFF\0\0"s}, {12, "\4"s}})
        cases.emplace_back(Jpeg(std::string(sound).replace(at, bytes.size(), bytes)), "abcd");

    Arguments inputs;
    for (const auto& [file, shown] : cases)
        WriteText(inputs.emplace_back(std::to_wstring(inputs.size())), file);
    for (const bool rotate : {true, false}) {
        Pack((rotate ? Arguments{} : Arguments{L"--no-rotate"}) + inputs + Arguments{L"a.zmi"}).Ended(0);
        const Bytes file = Read(L"a.zmi");
        for (std::size_t i = 0; i < cases.size(); ++i) {
            const FramePixelFacts frame(file, i);
            std::string shown;
            for (const std::size_t y : {0u, frame.height - 1})
                for (const std::size_t x : {0u, frame.width - 1})
                    shown += static_cast<char>('a' + (frame.Shown(x, y) & 255) / 80);
            EXPECT_EQ(rotate ? cases[i].second : "abcd", shown) << i;
        }
    }
}

TEST_F(PackTest, MarksAndFillsTheTransparentColor) {
    WriteBitmap(L"p.bmp", 4, 1, {0xFF00FF, 0x000000, 0xFFFFFF, 0xFE01FE});
    Pack({L"--transparent", L"ff00ff", L"p.bmp", L"a.zmi"}).Ended(0);
    Pack({L"--transparent=#FF00FF", L"--mode", L"8", L"p.bmp", L"b.zmi"}).Ended(0);
    const Bytes direct = Read(L"a.zmi");
    EXPECT_EQ(0x30u, FileFacts(direct).Header(image_header::flags));
    const Bytes indexed = Read(L"b.zmi");
    EXPECT_EQ(0x28u, FileFacts(indexed).Header(image_header::flags));
    // A colour close to the key stays close to it, and opaque.
    EXPECT_EQ((std::vector{0x00FF00FFu, 0xFF000000u, 0xFFFFFFFFu, 0xFFFF04FFu}), Shown(direct, 0));
    EXPECT_EQ((std::vector{0x00FF00FFu, 0xFF000000u, 0xFFFFFFFFu, 0xFFFF00FFu}), Shown(indexed, 0));

    // A wide picture's icon is transparent at the top.
    Preview({L"a.zmi"}).Ended(0);
    Pack({L"--transparent", L"00ff00", L"a-icon-32.png", L"green.zmi"}).Ended(0);
    Pack({L"a-icon-32.png", L"a-icon-32.png", L"a-icon-16.png", L"white.zmi"})
        .Ended(0, "a-icon-32.png and 1 more: transparent parts are filled with white; --transparent keeps");
    EXPECT_EQ(0x0000FF00u, Shown(Read(L"green.zmi"), 0)[0]);
    EXPECT_EQ(0xFFFFFFFFu, Shown(Read(L"white.zmi"), 0)[0]);
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
    const std::vector<std::uint32_t> shown = Shown(Read(L"a.zmi"), 0);
    double missed = 0;
    for (std::size_t i = 0; i < colors.size(); ++i)
        for (const int channel : {0, 8, 16}) {
            const double distance = double(colors[i] >> channel & 255) - double(shown[i] >> channel & 255);
            missed += distance * distance;
        }
    EXPECT_LT(missed / 4096, 80) << "squared, on average; median cut comes to 94";
}

TEST_F(PackTest, TakesPatternsAndFoldersInTheOrderOfTheirNumbers) {
    std::filesystem::create_directory(folder_ / L"f");
    for (const std::uint32_t i : {10u, 9u, 1u})
        WriteBitmap(L"f\\b" + std::to_wstring(i) + L".BMP", i, 1, {0});
    WriteText(L"f\\b2.txt", "no picture");
    for (const wchar_t* const inputs : {L"f", L"f\\b*.bmp", L"f/b?*.bmp"}) {
        Pack({inputs, L"f\\b9.BMP", L"a.zmi"})
            .Ended(0)
            .Told("4 frames (2 of 9 x 1, 1 of 1 x 1, 1 of 10 x 1), 16 bits");
        const Bytes file = Read(L"a.zmi");
        std::vector<std::uint32_t> widths;
        for (std::size_t i = 0; i < 4; ++i)
            widths.push_back(FileFacts(file).Width(i));
        EXPECT_EQ((std::vector<std::uint32_t>{1, 9, 10, 9}), widths);
    }
}

TEST_F(PackTest, TakesTheLargestIconAndSaysWhichFramesAreLacking) {
    const auto ico = [](const std::vector<std::pair<std::uint32_t, std::uint32_t>>& pictures) {
        Numbers file, data;
        file.Add(0x10000, 4).Add(pictures.size(), 2);
        for (const auto& [edge, bits] : pictures) {
            Numbers picture; // white, without a mask
            picture.Add(40, 4).Add(edge, 4).Add(2 * edge, 4).Add(bits << 16 | 1, 4);
            picture.text += std::string(bits == 4 ? 24 + 64 : 24, '\0');
            picture.text += std::string((edge * bits + 31) / 32 * 4 * edge, '\xFF');
            picture.text += std::string(4 * edge, '\0');
            file.Add(edge | edge << 8, 4).Add(1, 4).Add(picture.text.size(), 4);
            file.Add(6 + 16 * pictures.size() + data.text.size(), 4);
            data.text += picture.text;
        }
        return file.text + data.text;
    };
    WriteText(L"a.ico", ico({{2, 24}, {3, 4}, {3, 32}, {1, 32}}));
    WriteText(L"many.ico", ico({1001, {1, 32}}));
    Pack({L"a.ico", L"a.zmi"}).Ended(0);
    EXPECT_EQ(std::vector(9, 0xFFFFFFFF), Shown(Read(L"a.zmi"), 0));
    Pack({L"many.ico", L"b.zmi"})
        .Ended(1, "many.ico: an .ico file of 1,001 pictures; at most 1,000 are read");

    Unpack({L"a.zmi"}).Ended(0);
    Bytes png = Read(L"a.png");
    constexpr auto animation = "\0\0\0\x08"
                               "acTL\0\0\0\2\0\0\0\0\xF3\x8D\x93\x70"sv; // of two frames
    png.insert(png.begin() + 33, animation.begin(), animation.end());
    Write(L"b.png", png);
    std::string tiff = GrayTiff(2, 1);
    tiff.at(tiff.size() - 5) = '\xFF'; // where the second page should be
    WriteText(L"c.tif", tiff);
    for (const wchar_t* const name : {L"b.png", L"c.tif"})
        Pack({name, L"b.zmi"}).Ended(0, "it has more frames, which this system's decoder does not deliver");
    EXPECT_EQ("", Pack({L"a.png", L"b.zmi"}).err);
}

TEST_F(PackTest, RefusesInputsThatAreTooLarge) {
    WriteText(L"canvas.gif", Gif(8193, 8192, {{0, 0, 0, "r"}}));
    WriteText(L"beneath.gif", Gif(8192, 8192, {{0, 0, 3, "r"}, {0, 0, 0, "r"}}));
    WriteText(L"turned.tif", GrayTiff(20000, 6));
    WriteBitmap(L"large.bmp", 1, 1, {0});
    Bytes large = Read(L"large.bmp");
    SetField(large, 18, {0, 4}, 30000);
    SetField(large, 22, {0, 4}, 30000);
    Write(L"large.bmp", large);
    Write(L"most.zmi",
          ZmiBuilder{.frames = std::vector<ZmiFrame>(65535, {1, 1}), .sharePixels = true}.Build());
    const std::pair<Arguments, const char*> cases[] = {
        {{L"canvas.gif"}, "canvas.gif: its canvas of 8193 x 8192 pixels is too large"},
        {{L"beneath.gif"}, "beneath.gif: its canvas of 8192 x 8192 pixels is too large"},
        {{L"turned.tif"}, "turned.tif: 20000 x 20000 pixels are too many to turn upright; --no-rotate"},
        {{L"large.bmp", L"large.bmp"}, "3,600,000,000 bytes or more; it must stay below 2 GiB"},
        {{L"most.zmi", L"large.bmp"}, "there are 65,536 frames or more"},
    };
    for (const auto& [inputs, words] : cases)
        Pack(inputs + Arguments{L"a.zmi"}).Ended(1, words);
    EXPECT_EQ(5, FileCount());
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
        {{L"*.png"}, 1, "*.png: file not found"},
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
        {{L"--title", std::wstring(34, L'x'), L"p.bmp"},
         2,
         "33 characters (fewer in some languages: 33 bytes"},
        {{L"--title", L"\xD800", L"p.bmp"}, 2, "code page"},
        {{L"--title", L"\x1B[31m", L"p.bmp"}, 2, "control character"},
        {{L"--blank", L"p.bmp"}, 2, "--blank takes no input"},
        {{L"--out", L"f", L"p.bmp"}, 2, "--out needs --each"},
    };
    WriteBitmap(L"p.bmp", 2, 1, {0x000000, 0xFFFFFF});
    Bytes cut = Read(L"p.bmp");
    cut.resize(cut.size() - 4);
    Write(L"cut.bmp", cut);
    const Bytes old = ZmiBuilder{}.Build();
    Write(L"old.zmi", old);
    std::filesystem::create_directory(folder_ / L"folder.zmi");
    for (const auto& [arguments, exitCode, words, output] : cases) {
        const ToolRun run = Pack(arguments + Arguments{output}).Ended(exitCode, words);
        EXPECT_EQ("", run.out);
        EXPECT_EQ(1, std::count(run.err.begin(), run.err.end(), '\n')) << run.err;
        EXPECT_EQ(old, Read(L"old.zmi")) << words;
        EXPECT_EQ(4, FileCount()) << words;
    }
}

TEST_F(PackTest, LeavesNoHalfWrittenFileWhenInterrupted) {
    WriteBitmap(L"p.bmp", 700, 700, {0x123456, 0xFEDCBA, 0x808080});
    const Arguments arguments = Arguments(200, L"p.bmp") + Arguments{L"--mode", L"1", L"p.zmi"};
    Run(Beside(L"zmi-pack.exe"), arguments, CREATE_NO_WINDOW, [&](DWORD process) {
        for (int i = 0; i < 1000 && FileCount() == 1; ++i)
            Sleep(10);
        EXPECT_EQ(2, FileCount()) << "it never began to write";
        EXPECT_EQ(0u, Run(Beside(L"interrupt.exe"), {std::to_wstring(process)}).exitCode);
    }).Ended(130);
    EXPECT_EQ(1, FileCount());
}

} // namespace
} // namespace vantrel::tests
