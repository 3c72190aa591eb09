#include "tests/tools/ToolTest.h"

#include <regex>
#include <set>

namespace vantrel::tests {
namespace {

using PreviewTest = ToolTest;

const ZmiBuilder single{.frames = {{30, 20}}, .title = "a \"b\\c\x1B\n"};
const ZmiBuilder several{.mode = 1, .frames = {{5, 4}, {3, 3}}};

Bytes With(Bytes file, std::size_t base, Field field, std::uint32_t value) {
    SetField(file, base, field, value);
    return file;
}

// Replaces values by one letter, from the innermost outwards, until only that letter should be left.
bool IsJson(std::string text) {
    const std::regex scalar(R"re("([^"\\\x00-\x1f]|\\["\\]|\\u[0-9A-F]{4})*"|\d+|true|false)re");
    const std::regex list(R"(\{v:v(,v:v)*\}|\[\]|\[v(,v)*\])");
    text = std::regex_replace(std::regex_replace(text, scalar, "v"), std::regex("[ \n]"), "");
    while (std::regex_search(text, list))
        text = std::regex_replace(text, list, "v");
    return text == "v";
}

TEST_F(PreviewTest, NamesEachFaultOfAFile) {
    const Bytes good = single.Build();
    const Bytes frames = several.Build();
    const std::size_t payload = single.PayloadAt();
    Bytes longer = good;
    longer.push_back(0);
    Bytes cutShort = good;
    cutShort.erase(cutShort.begin() + 112 + 54, cutShort.end() - 4);
    const std::pair<Bytes, const char*> faults[] = {
        {{}, "the file is empty"},
        {Bytes(good.begin(), good.begin() + 111), "the file has 111 bytes, fewer than its 112-byte header"},
        {Bytes(2000, 'x'), R"(not a ZMI file (it does not start with "zpix-zmi"))"},
        {With(good, 0, file_header::version, 2), "version at offset 9 is 2, not 1"},
        {With(good, 0, file_header::headerSize, 4113), "header size at offset 13 is 4,113, not 112"},
        {With(good, 0, file_header::kind, 0), "kind at offset 17 is 0, not 1"},
        {With(good, 0, file_header::dataOffset, 111), "data offset at offset 18 is 111, inside the header"},
        {Bytes(good.begin(), good.end() - 1),
         "the file is cut short: 1,370 of 1,371 bytes (header offsets 18 and 22)"},
        {longer, "the file is too long: 1,372 bytes instead of 1,371 (header offsets 18 and 22)"},
        {With(good, good.size() - 1, {0, 1}, 'X'), "trailer tag at offset 1,367 is not zpix"},
        {With(cutShort, 0, file_header::dataSize, 54), "54 bytes, fewer than its 55-byte image header"},
        {With(good, payload, image_header::pixelOffset, 168),
         "outside the payload (112 to 1,367): the pixels of frame 1, 1,200 bytes at offset 168"},
        {With(good, payload, image_header::flags, 0x18), "frame 1 is in pixel mode 3"},
        {With(good, payload, image_header::width, 0), "frame 1 is 0 x 20 pixels"},
        {With(frames, payload, image_header::paletteOffset, 1),
         "the colour table of frame 1, 512 bytes at offset 1"},
        {With(frames, several.FrameTableAt(), frame_table::frameCount, 0), "contains no frames"},
        {With(frames, several.RecordAt(1), frame_record::dataOffset, 99999),
         "the pixels of frame 2, 9 bytes at offset 99,999"},
    };
    Write(L"good.zmi", good);
    Arguments arguments = {L"--sizes", L"32", L"--out", L"out", L"good.zmi", L"none.zmi", L"none*"};
    for (std::size_t i = 0; i < std::size(faults); ++i)
        Write(arguments.emplace_back(std::to_wstring(i) + L".zmi"), faults[i].first);
    const ToolRun run = Preview(arguments).Ended(1, "none.zmi: file not found\n", "none*: file not found\n");
    EXPECT_TRUE(Contains(run.out, "32 x 21 -> out\\good-32.png"));
    EXPECT_EQ(std::ssize(faults) + 2, std::count(run.err.begin(), run.err.end(), '\n'));
    for (std::size_t i = 0; i < std::size(faults); ++i) {
        const std::size_t at = run.err.find(": " + std::to_string(i) + ".zmi: ");
        ASSERT_NE(std::string::npos, at) << faults[i].second;
        const std::string line = run.err.substr(at, run.err.find('\n', at) - at);
        EXPECT_TRUE(Contains(line, faults[i].second)) << faults[i].second << "\n" << line;
    }
}

TEST_F(PreviewTest, WritesJsonThatParsesInEveryCase) {
    std::filesystem::create_directory(folder_ / L"folder");
    Write(L"good.zmi", single.Build());
    Write(L"bad.zmi", {'x'});
    const struct {
        Arguments arguments;
        DWORD exitCode;
        const char* words;
        std::vector<const char*> parts;
    } cases[] = {
        {{L"--sizes", L"300", L"--out", L"out", L"--sheet", L"page.png", L"good.zmi", L"folder", L"bad.zmi"},
         1,
         "bad.zmi: the file has 1 bytes",
         {R"({"files": [)", R"("file": "good.zmi", "ok": true)", R"("result": "a \"b\\c\u001B\u000A"})",
          R"("result": "300 x 200", "width": 300, "height": 200, "png": "out\\good-300.png")",
          R"("request": "dimensions", "ok": true, "result": "30 x 20", "width": 30, "height": 20})",
          R"("request": "bit depth", "ok": true, "result": 16})", R"(Z"})",
          R"("handler": "icon", "request": "16", "ok": true)",
          R"("file": "folder", "ok": false, "reason": "the folder contains no .zmi files", "results": [])",
          R"("file": "bad.zmi", "ok": false, "reason": "the file has 1 bytes)", R"("hresult": "0x80004005"})",
          R"(]}], "sheet": "page.png", "ok": false})"}},
        {{L"folder"}, 1, "no .zmi files", {R"("results": []}], "ok": false})"}},
        {{}, 2, "no file given", {R"({"ok": false, "error": "no file given)"}},
    };
    for (const auto& [arguments, exitCode, words, parts] : cases) {
        const ToolRun run = Preview(arguments + Arguments{L"--json"}).Ended(exitCode, words);
        EXPECT_TRUE(IsJson(run.out)) << run.out;
        for (const char* part : parts)
            run.Told(part);
    }
}

TEST_F(PreviewTest, KeepsItsPicturesApartAndGoesOnWhenOneFails) {
    std::filesystem::create_directories(folder_ / L"out" / L"a-icon-32.png");
    for (const wchar_t* name : {L"a.zmi", L"a-icon.zmi", L"out\\A.ZMI", L"out\\no.txt"})
        Write(name, single.Build());
    const ToolRun run =
        Preview({L"--sizes", L"32", L"--out", L"out", L"--sheet", L"out\\a-icon-16.png", L"a*.zmi", L"out"});
    run.Ended(1, "a-icon.zmi: thumbnail 32: out\\a-icon-32.png: this is a folder");
    run.Told("a \"b\\c<U+001B><U+000A>\n"); // a line break in a title starts no new line
    std::set<std::string> names;
    const std::regex arrow(R"(-> (.+))");
    for (std::sregex_iterator at(run.out.begin(), run.out.end(), arrow), end; at != end; ++at)
        EXPECT_TRUE(names.insert((*at)[1]).second) << (*at)[1];
    EXPECT_EQ(12u, names.size()) << run.out;
}

TEST_F(PreviewTest, TellsWrongUsageFromWhatFailed) {
    const struct {
        Arguments arguments;
        DWORD exitCode;
        const char* words;
    } cases[] = {
        {{}, 2, "no file given"},
        {{L""}, 2, "a file name is empty"},
        {{L"--frames", L"good.zmi"}, 2, "unknown option --frames; write -- before a file"},
        {{L"--sizes=32,4097", L"good.zmi"}, 2, "from 1 to 4096, not \"4097\""},
        {{L"good.zmi", L"--out"}, 2, "--out needs a value"},
        {{L"--json=yes", L"good.zmi"}, 2, "--json takes no value"},
        {{L"--doctor", L"--sheet", L"page.png"}, 2, "--doctor writes no pictures"},
        {{L"--sheet=page.png", L"--sizes=9", L"good.zmi"}, 0, "the sheet chooses"},
        {{L"--dll", L"none.dll", L"good.zmi"}, 1, "; zmi-preview --doctor may say why\n"},
        {{L"--sizes=32", L"thin.zmi"},
         1,
         "32: the picture is too thin for thumbnails smaller than 40 pixels\n"},
        {{L"--out", L"good.zmi", L"good.zmi"}, 1, "good-256.png: there is a file where"},
        {{L"--sheet", L"--good.zmi"}, 2, "--sheet needs a value; write one"},
        {{L"--sheet=--good.zmi", L"good.zmi"}, 2, "must end in .png"},
        {{L"--sheet", L"text.png", L"good.zmi"}, 2, "not a PNG file; use --force to replace it\n"},
        {{L"--sheet", L"GOOD.png", L"good.png"}, 2, "GOOD.png: this is one of the input files"},
        {{L"--", L"--good.zmi"}, 0, ""},
    };
    Write(L"good.zmi", single.Build());
    Write(L"good.png", single.Build());
    Write(L"thin.zmi", ZmiBuilder{.frames = {{1, 40}}}.Build());
    Write(L"text.png", {'t'});
    Write(L"--good.zmi", several.Build());
    for (const auto& [arguments, exitCode, words] : cases) {
        const ToolRun run = Preview(arguments).Ended(exitCode, words);
        EXPECT_EQ(*words ? 1 : 0, std::count(run.err.begin(), run.err.end(), '\n')) << run.err;
    }
}

// More demanding on Windows, where such a path needs a special form; Wine takes any.
TEST_F(PreviewTest, TakesLongPaths) {
    const std::wstring half(115, L'ü');
    const std::wstring folder = half + L"\\" + half;
    Pack({L"--blank", folder + L"\\p 図.zmi"}).Ended(0);
    const ToolRun run =
        Preview({L"--sizes", L"16", L"--out", folder, L"--sheet", folder + L"\\s.png", folder});
    // The exit code is not 0, since column structures can't hold such a path.
    EXPECT_TRUE(Contains(run.out, "p 図.zmi  thumbnail   16  ")) << run.err << run.out;
    EXPECT_FALSE(Read(folder + L"\\s.png").empty());
    Pack({folder + L"\\p 図-16.png", L"again.zmi"}).Ended(0);
    // The standard library can't remove such long paths.
    EXPECT_TRUE(MoveFileW(LongPath(folder).c_str(), LongPath(L"rest").c_str())) << GetLastError();
}

TEST_F(PreviewTest, DrawsASheetAndKeepsProgressOutOfPipes) {
    Write(L"a.zmi", single.Build());
    Write(L"b.zmi", several.Build());
    Write(L"c.zmi", ZmiBuilder{}.Build());
    const ToolRun run = Preview({L"--sheet", L"page.png", L"."}).Ended(0);
    EXPECT_TRUE(run.out.ends_with("sheet -> page.png\n")) << run.out;
    EXPECT_EQ("", run.err);
    EXPECT_EQ(4, FileCount()) << "separate pictures only with --out";
    const Bytes png = Read(L"page.png");
    ASSERT_LT(24u, png.size());
    EXPECT_EQ("PNG", std::string(png.begin() + 1, png.begin() + 4));
    const int width = png[18] * 256 + png[19];
    const int height = png[22] * 256 + png[23];
    EXPECT_NEAR(1300, width, 700);
    EXPECT_NEAR(1150, height, 850);

    SetEnvironmentVariableW(L"VANTREL_TTY", L"1");
    const ToolRun watched = Preview({L"--out", L"out", L"."});
    SetEnvironmentVariableW(L"VANTREL_TTY", nullptr);
    EXPECT_TRUE(Contains(watched.err, "[2/3]")) << watched.err;
    EXPECT_TRUE(watched.err.ends_with('\r')) << watched.err;
    EXPECT_FALSE(Contains(watched.out, "\r"));
}

} // namespace
} // namespace vantrel::tests
