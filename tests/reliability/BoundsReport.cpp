// bounds_report: what each kind of request costs for hostile files, compared with the bound on memory.
#include "tests/host/Requests.h"
#include "tests/host/ResourceWatch.h"
#include "tests/reliability/HostileFile.h"

#include <process.h>
#include <psapi.h>
#include <shlwapi.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>

namespace vantrel::tests {
namespace {

constexpr std::int64_t mebibyte = 1024 * 1024;
constexpr UINT most = 0xFFFFFFFF;
constexpr HostileFile smallFile = {.name = "64 x 64", .width = 64, .height = 64};

constexpr int notMeasurable = 77; // CTest counts this as skipped

enum class Kind { Properties, Column, Thumbnail, Image, Icons };
constexpr const char* kindNames[] = {"3 properties", "column", "thumbnail", "image", "icons"};

struct Row {
    HostileFile file;
    Kind kind;
    UINT width, height; // of the box; for icons the large one's edge and the small one's
    bool succeeds;

    bool Paints() const { return kind >= Kind::Thumbnail; }
};

std::vector<Row> Rows() {
    struct {
        HostileFile file;
        bool thumbnail = true;
        bool icons = true;
    } const cases[] = {
        {{"65,535 records, one shared 1 MiB", 2, 1024, 512, 65535, true}},
        {{"65535 x 65535 claimed, not there", 2, 65535, 65535, 1, false, false}, false, false},
        {{"65535 x 65535 in 1 bit, all there", 0, 65535, 65535}, false, false},
        {{"1 x 65535", 2, 1, 65535}, false},
        {{"65535 x 1", 2, 65535, 1}, false},
        {{"0 x 0", 2, 0, 0}, false},
        {{"0 x 5", 2, 0, 5}, false},
        {{"payload ends 1 byte below 2 GiB", 2, 64, 64, 1, false, true, 0x7FFFFFFF}},
        {{"payload ends at 2 GiB", 2, 64, 64, 1, false, false, 0x80000000}, false, false},
        {{"240 frames of 320 x 240", 2, 320, 240, 240}},
        {{"4096 x 4096 in 1 bit", 0, 4096, 4096}},
        {{"128 x 128", 2, 128, 128}},
        {{"1024 x 1024", 2, 1024, 1024}},
        {{"4096 x 4096", 2, 4096, 4096}},
    };
    std::vector<Row> rows;
    for (const auto& each : cases) {
        rows.push_back({each.file, Kind::Column, 0, 0, each.file.loads});
        rows.push_back({each.file, Kind::Properties, 0, 0, each.file.loads});
        rows.push_back({each.file, Kind::Thumbnail, 256, 256, each.thumbnail});
        rows.push_back({each.file, Kind::Icons, 32, 16, each.icons});
    }
    for (const UINT edge : {0u, 1u, 4096u, most})
        for (const Kind kind : {Kind::Thumbnail, Kind::Image})
            rows.push_back({smallFile, kind, edge, edge, edge != 0 && edge != most});
    rows.push_back({smallFile, Kind::Image, most, 1, false});
    for (const UINT edge : {0u, 1u, 0xFFFFu})
        rows.push_back({smallFile, Kind::Icons, edge, edge, edge == 1});
    return rows;
}

// The complete request as a host makes it: object, file, call, release.
Answer Perform(Kind kind, UINT width, UINT height, const wchar_t* path) {
    ComPtr<IStream> stream;
    if (kind == Kind::Properties || kind == Kind::Thumbnail)
        SHCreateStreamOnFileEx(path, STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr, &stream);
    switch (kind) {
    case Kind::Properties: {
        const auto store = PropertyStoreOf(*stream.Get());
        HRESULT worst = S_OK;
        for (const PROPERTYKEY& key : {titleKey, dimensionsKey, bitDepthKey})
            worst = std::max(worst, AskValue(*store.Get(), key).result);
        return {worst};
    }
    case Kind::Column:
        return AskColumn(*Create<IColumnProvider>(columnProviderClass, IID_IColumnProvider).Get(), path);
    case Kind::Thumbnail:
        return AskThumbnail(*ThumbnailProviderOf(*stream.Get()).Get(), width);
    case Kind::Image:
        return AskImage(*ImageHandlerOf(path).Get(), {static_cast<LONG>(width), static_cast<LONG>(height)});
    default:
        return AskIcons(*IconHandlerOf(path).Get(), width, height);
    }
}

// Facts: 4 MiB. Pictures: plus frame 0's surface, if there can be one, plus the result.
std::int64_t Bound(const Row& row, std::int64_t resultBytes) {
    const HostileFile& file = row.file;
    if (!row.Paints() || !file.loads)
        return 4 * mebibyte;
    const std::int64_t surface = std::int64_t{4} * file.width * file.height;
    return (surface < 2048 * mebibyte ? surface : 0) + resultBytes + 4 * mebibyte;
}

PROCESS_MEMORY_COUNTERS Memory() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters;
}

// Prints one line of the table. In its own process, since the peak can't be reset.
int Measure(const Row& row, const wchar_t* path) {
    {
        // One-time costs of the system don't count.
        const ResourceWatch watch;
        Perform(row.kind, 8, 8, (std::wstring(path) + L"-small").c_str());
        if (watch.PeakBytes() == 0)
            return 2;
    }

    const ResourceWatch watch;
    const std::size_t before = Memory().WorkingSetSize;
    const Answer answer = Perform(row.kind, row.width, row.height, path);
    const auto held = static_cast<std::int64_t>(watch.PeakBytes());
    const auto seen = static_cast<std::int64_t>(Memory().PeakWorkingSetSize - before);

    std::int64_t bytes = 0;
    for (const Picture& picture : answer.pictures) // an icon has a mask besides its colours
        bytes += (row.kind == Kind::Icons ? 8 : 4) * static_cast<std::int64_t>(picture.words.size());
    const std::int64_t bound = Bound(row, bytes);
    // Wine's StretchBlt makes its own copy of the result when it enlarges; this program makes another one
    // later.
    const bool exceeded = held >= bound || seen >= bound + bytes;
    const bool wrong = (answer.result == S_OK) != row.succeeds;
    std::printf("| %s | %s %u, %u | %08lX | %lld | %lld | %lld | %s |\n", row.file.name,
                kindNames[static_cast<int>(row.kind)], row.width, row.height,
                static_cast<unsigned long>(answer.result), held / 1024, seen / 1024, bound / 1024,
                wrong      ? "WRONG RESULT"
                : exceeded ? "EXCEEDED"
                           : "ok");
    return wrong || exceeded;
}

int Report(const wchar_t* program) {
    if (!IsMemoryVisible()) {
        std::puts(memoryNotVisible);
        return notMeasurable;
    }
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    const std::wstring path = folder + (L"bounds-" + std::to_wstring(GetCurrentProcessId()));
    std::puts("| file | request | result | held (KiB) | working set (KiB) | bound (KiB) | |\n"
              "|---|---|---|--:|--:|--:|---|");
    const std::vector<Row> rows = Rows();
    bool failed = Write(smallFile, path + L"-small") == 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i == 0 || rows[i].file.name != rows[i - 1].file.name)
            failed |= Write(rows[i].file, path) == 0;
        std::fflush(stdout);
        const auto code =
            static_cast<unsigned>(_wspawnl(_P_WAIT, program, L"bounds_report", std::to_wstring(i).c_str(),
                                           (L"\"" + path + L"\"").c_str(), nullptr));
        if (code > 1)
            std::printf("row %zu was not measured: exit code %u\n", i, code);
        failed |= code != 0;
    }
    for (const std::wstring& file : {path, path + L"-small"})
        failed |= !DeleteFileW(file.c_str());
    return failed ? 1 : 0;
}

} // namespace
} // namespace vantrel::tests

// Without arguments the whole table; child processes get two. Returns 1 if a bound is exceeded, an answer is
// wrong or something could not be measured; a child returns 2 for the latter.
int wmain(int count, wchar_t** arguments) {
    using namespace vantrel::tests;
    if (count < 3) {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        return Report(program);
    }
    return Measure(Rows().at(std::wcstoul(arguments[1], nullptr, 10)), arguments[2]);
}
