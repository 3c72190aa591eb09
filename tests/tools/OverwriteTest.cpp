#include "tests/tools/ToolTest.h"

namespace vantrel::tests {
namespace {

const Arguments force = {L"--force"};

// What each tool does with a file that has the name of its output.
class OverwriteTest : public ToolTest {
protected:
    OverwriteTest() {
        Write(L"a.zmi", ZmiBuilder{.frames = {{4, 3}}}.Build());
        Write(L"b.zmi", ZmiBuilder{.frames = {{3, 4}}}.Build());
        Write(L"c.zmi", ZmiBuilder{.frames = {{2, 2}, {5, 1}, {1, 4}}}.Build());
    }

    ToolRun RunTool(const std::wstring& name, const Arguments& arguments) const {
        return name == L"zmi-preview" ? Preview(arguments) : Run(Beside((name + L".exe").c_str()), arguments);
    }
};

TEST_F(OverwriteTest, ReplacesTypedNamesOfTheSameKind) {
    const struct {
        const wchar_t* tool;
        Arguments arguments;
        const wchar_t* output;
        std::string sameKind;
    } cases[] = {
        {L"zmi-pack", {L"--blank", L"out.zmi"}, L"out.zmi", std::string("zpix-zmi", 9)},
        {L"zmi-unpack", {L"--gif", L"out.gif", L"a.zmi"}, L"out.gif", "GIF89a"},
        {L"zmi-preview", {L"--sheet", L"out.png", L"a.zmi"}, L"out.png", "\x89PNG\r\n\x1A\n"},
    };
    for (const auto& [tool, arguments, output, sameKind] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        WriteText(output, sameKind);
        RunTool(tool, arguments).Ended(0);
        const Bytes written = Read(output);
        EXPECT_LT(sameKind.size(), written.size());

        WriteText(output, "a letter");
        RunTool(tool, arguments).Ended(2, "use --force");
        EXPECT_EQ(8u, Read(output).size());
        RunTool(tool, force + arguments).Ended(0);
        EXPECT_EQ(written, Read(output));

        std::filesystem::remove(folder_ / output);
        std::filesystem::create_directory(folder_ / output);
        RunTool(tool, force + arguments).Ended(1, "this is a folder");
    }
}

TEST_F(OverwriteTest, ReplacesNamesThatItMadeUpOnlyByTheSameBytes) {
    const struct {
        const wchar_t* tool;
        Arguments arguments;
        const wchar_t* inTheWay; // one of a.zmi's pictures
        const wchar_t* another;  // one of b.zmi's
    } cases[] = {
        {L"zmi-unpack", {L"--out", L"u", L"a.zmi", L"b.zmi"}, LR"(u\a.png)", LR"(u\b.png)"},
        {L"zmi-preview", {L"--out", L"p", L"a.zmi", L"b.zmi"}, LR"(p\a-96.png)", LR"(p\b-96.png)"},
    };
    for (const auto& [tool, arguments, inTheWay, another] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        RunTool(tool, arguments).Ended(0);
        const Bytes written = Read(inTheWay);
        RunTool(tool, arguments).Ended(0);

        // The same kind and size, and all but the last byte.
        Bytes edited = written;
        ASSERT_FALSE(edited.empty());
        edited.back() ^= 1;
        Write(inTheWay, edited);
        std::filesystem::remove(folder_ / another);
        RunTool(tool, arguments).Ended(1, "a.zmi: ", "already exists", "--out", "--force");
        EXPECT_EQ(edited, Read(inTheWay));
        EXPECT_FALSE(Read(another).empty());
        EXPECT_EQ(0,
                  std::ranges::count_if(std::filesystem::directory_iterator(folder_ / arguments[1]),
                                        [](const auto& file) { return file.path().extension() == ".tmp"; }));

        RunTool(tool, force + arguments).Ended(0);
        EXPECT_EQ(written, Read(inTheWay));

        std::filesystem::remove(folder_ / inTheWay);
        std::filesystem::create_directory(folder_ / inTheWay);
        std::filesystem::remove(folder_ / another);
        RunTool(tool, force + arguments).Ended(1, "this is a folder");
        EXPECT_FALSE(Read(another).empty());
    }
}

TEST_F(OverwriteTest, ReportsEveryPictureWhenOneIsInTheWay) {
    WriteText(L"c-002.png", "mine");
    const ToolRun run = Unpack({L"--json", L"--out", L".", L"c.zmi", L"a.zmi"});
    run.Ended(1, "c.zmi: .\\c-002.png: this already exists")
        .Told(R"("png": ".\\c-001.png")", R"("fault": ".\\c-002.png: this already exists)",
              R"("png": ".\\c-003.png")", R"("png": ".\\a.png"})", R"("ok": false})");
    EXPECT_FALSE(Contains(run.out, R"("error")")) << run.out;
    EXPECT_EQ(4u, Read(L"c-002.png").size());
}

TEST_F(OverwriteTest, NeverReplacesAnInput) {
    std::filesystem::rename(folder_ / L"a.zmi", folder_ / L"b.png");
    const Bytes input = Read(L"b.png");
    Unpack({L"--force", L"b.zmi", L"b.png", L"c.zmi"})
        .Ended(1, "b.zmi: b.png: this is one of the input files");
    EXPECT_EQ(input, Read(L"b.png"));
    EXPECT_FALSE(Read(L"c-001.png").empty());
}

} // namespace
} // namespace vantrel::tests
