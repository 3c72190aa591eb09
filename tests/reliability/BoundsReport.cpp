// bounds_report: what each kind of request costs for hostile files, against the bound on memory.
#include "tests/door/Requests.h"
#include "tests/door/ResourceWatch.h"
#include "tests/reliability/HostileFile.h"

#include <process.h>
#include <psapi.h>
#include <shlwapi.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace vantrel::tests {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int64_t mebibyte = 1024 * 1024;
constexpr UINT most = 0xFFFFFFFF;
constexpr HostileFile small = {.name = "64 x 64", .width = 64, .height = 64};

enum class Kind { Properties, Column, Thumbnail, Image, Icons };

struct Ask {
    Kind kind;
    UINT width = 0; // of the box; for icons the large one's edge and the small one's
    UINT height = 0;

    bool Paints() const { return kind >= Kind::Thumbnail; }
};

struct Row {
    HostileFile file;
    Ask ask;
    bool succeeds;
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
        {{"256 x 256", 2, 256, 256}},
        {{"512 x 512", 2, 512, 512}},
        {{"1024 x 1024", 2, 1024, 1024}},
        {{"2048 x 2048", 2, 2048, 2048}},
        {{"4096 x 4096", 2, 4096, 4096}},
    };
    std::vector<Row> rows;
    for (const auto& each : cases) {
        rows.push_back({each.file, {Kind::Column}, each.file.loads});
        rows.push_back({each.file, {Kind::Properties}, each.file.loads});
        rows.push_back({each.file, {Kind::Thumbnail, 256, 256}, each.thumbnail});
        rows.push_back({each.file, {Kind::Icons, 32, 16}, each.icons});
    }
    for (const UINT edge : {0u, 1u, 4096u, most}) {
        rows.push_back({small, {Kind::Thumbnail, edge, edge}, edge != 0 && edge != most});
        rows.push_back({small, {Kind::Image, edge, edge}, edge != 0 && edge != most});
    }
    rows.push_back({small, {Kind::Image, most, 1}, false});
    rows.push_back({small, {Kind::Icons, 0, 0}, false});
    rows.push_back({small, {Kind::Icons, 1, 1}, true});
    rows.push_back({small, {Kind::Icons, 0xFFFF, 0xFFFF}, false});
    return rows;
}

struct Outcome {
    HRESULT result = E_UNEXPECTED;
    std::int64_t bytes = 0; // of the picture handed out
};

Outcome FromBitmap(HRESULT result, HBITMAP handle) {
    const Bitmap bitmap(handle);
    BITMAP facts{};
    GetObjectW(handle, sizeof facts, &facts);
    return {result, std::int64_t{4} * facts.bmWidth * facts.bmHeight};
}

// The whole request as a host makes it: object, file, call, release.
Outcome Perform(const Ask& ask, const wchar_t* path) {
    ComPtr<IStream> stream;
    if (ask.kind == Kind::Properties || ask.kind == Kind::Thumbnail)
        SHCreateStreamOnFileEx(path, STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr, &stream);
    HBITMAP bitmap = nullptr;
    switch (ask.kind) {
    case Kind::Properties: {
        const auto store = PropertyStoreOf(*stream.Get());
        HRESULT result = S_OK;
        for (const PROPERTYKEY& key : {titleKey, dimensionsKey, bitDepthKey})
            result = std::max(result, AskValue(*store.Get(), key).result);
        return {result};
    }
    case Kind::Column:
        return {
            AskColumn(*Create<IColumnProvider>(columnProviderClass, IID_IColumnProvider).Get(), path).result};
    case Kind::Thumbnail: {
        WTS_ALPHATYPE alpha;
        const HRESULT result = ThumbnailProviderOf(*stream.Get())->GetThumbnail(ask.width, &bitmap, &alpha);
        return FromBitmap(result, bitmap);
    }
    case Kind::Image: {
        const auto handler = ImageHandlerOf(path);
        const SIZE size{static_cast<LONG>(ask.width), static_cast<LONG>(ask.height)};
        DWORD flags = 0;
        handler->GetLocation(nullptr, 0, nullptr, &size, 32, &flags);
        const HRESULT result = handler->Extract(&bitmap);
        return FromBitmap(result, bitmap);
    }
    default: {
        HICON icons[2] = {};
        const auto sizes = static_cast<UINT>(MAKELONG(ask.width, ask.height));
        const HRESULT result = IconHandlerOf(path)->Extract(nullptr, 0, &icons[0], &icons[1], sizes);
        for (const HICON icon : icons)
            DestroyIcon(icon);
        // Each has colours and a mask.
        const std::int64_t pixels =
            std::int64_t{ask.width} * ask.width + std::int64_t{ask.height} * ask.height;
        return {result, result == S_OK ? 8 * pixels : 0};
    }
    }
}

// Facts: 4 MiB. Pictures: besides, frame 0's surface, if there can be one, and the result.
std::int64_t Bound(const Row& row, std::int64_t resultBytes) {
    const HostileFile& file = row.file;
    if (!row.ask.Paints() || !file.loads)
        return 4 * mebibyte;
    const std::int64_t surface = std::int64_t{4} * file.width * file.height;
    return (surface < 2048 * mebibyte ? surface : 0) + resultBytes + 4 * mebibyte;
}

std::string Name(const Ask& ask) {
    constexpr const char* kinds[] = {"column", "thumbnail", "image", "icons"};
    const std::string edges = std::to_string(ask.width) + ", " + std::to_string(ask.height);
    return ask.kind == Kind::Properties
               ? "3 properties"
               : kinds[static_cast<int>(ask.kind) - 1] + (ask.Paints() ? ' ' + edges : "");
}

const char* Name(HRESULT result) {
    return result == S_OK            ? "S_OK"
           : result == S_FALSE       ? "S_FALSE"
           : result == E_FAIL        ? "E_FAIL"
           : result == E_OUTOFMEMORY ? "E_OUTOFMEMORY"
                                     : "another";
}

PROCESS_MEMORY_COUNTERS Memory() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters;
}

// Prints one line of the table. In a process of its own: the system's peak can't be taken back.
int Measure(const Row& row, const wchar_t* path, double fileBytes) {
    {
        // The system's own first-time costs are not the request's.
        const ResourceWatch watch;
        Perform({row.ask.kind, 8, 8}, (std::wstring(path) + L"-small").c_str());
        if (watch.PeakBytes() == 0)
            return 2;
    }

    const ResourceWatch watch;
    const std::size_t before = Memory().WorkingSetSize;
    Clock::time_point begin = Clock::now();
    const Outcome outcome = Perform(row.ask, path);
    Clock::duration time = Clock::now() - begin;
    const auto held = static_cast<std::int64_t>(watch.PeakBytes());
    const auto seen = static_cast<std::int64_t>(Memory().PeakWorkingSetSize - before);
    // Again while it is quickly done, for the fastest tells what the work costs.
    Clock::duration spent = time;
    for (int i = 0; i < 9 && spent < std::chrono::milliseconds(300); ++i) {
        begin = Clock::now();
        Perform(row.ask, path);
        const Clock::duration again = Clock::now() - begin;
        time = std::min(time, again);
        spent += again;
    }

    const std::int64_t bound = Bound(row, outcome.bytes);
    // Wine's StretchBlt, when it enlarges, makes a copy of the result for itself.
    const bool exceeded = held >= bound || seen >= bound + outcome.bytes;
    const bool wrong = (outcome.result == S_OK) != row.succeeds;
    const double loads = row.ask.kind == Kind::Properties ? 3 : 1;
    const double nanoseconds = std::chrono::duration<double, std::nano>(time).count() / loads;
    const double pixels = row.ask.Paints() && row.file.loads ? 1.0 * row.file.width * row.file.height : 0;
    const double work = fileBytes + pixels + static_cast<double>(outcome.bytes / 4);
    std::printf("| %s | %s | %s | %lld | %lld | %lld | %.2f | %.2f | %s |\n", row.file.name,
                Name(row.ask).c_str(), Name(outcome.result), held / 1024, seen / 1024, bound / 1024,
                nanoseconds / 1e6, nanoseconds / work,
                wrong      ? "WRONG RESULT"
                : exceeded ? "EXCEEDED"
                           : "ok");
    return wrong || exceeded;
}

int Report(const wchar_t* program) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    const std::wstring path = folder + (L"bounds-" + std::to_wstring(GetCurrentProcessId()));
    const std::wstring smallPath = path + L"-small";
    std::puts("| file | request | result | held (KiB) | working set (KiB) | bound (KiB) | time (ms) | "
              "ns per byte and pixel | |\n"
              "|---|---|---|--:|--:|--:|--:|--:|---|");
    const std::vector<Row> rows = Rows();
    intptr_t worst = Write(small, smallPath) > 0 ? 0 : 2;
    std::uint64_t fileBytes = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i == 0 || rows[i].file.name != rows[i - 1].file.name)
            fileBytes = Write(rows[i].file, path);
        std::fflush(stdout);
        const intptr_t code =
            _wspawnl(_P_WAIT, program, L"bounds_report", std::to_wstring(i).c_str(),
                     (L"\"" + path + L"\"").c_str(), std::to_wstring(fileBytes).c_str(), nullptr);
        const bool unmeasured = code < 0 || code > 1 || fileBytes == 0;
        if (unmeasured)
            std::printf("row %zu was not measured: file of %llu bytes, exit code %d\n", i,
                        static_cast<unsigned long long>(fileBytes), static_cast<int>(code));
        worst = std::max<intptr_t>(worst, unmeasured ? 2 : code);
    }
    for (const std::wstring& file : {path, smallPath})
        if (!DeleteFileW(file.c_str())) {
            std::printf("%ls is left behind: error %lu\n", file.c_str(), GetLastError());
            worst = 2;
        }
    return static_cast<int>(worst);
}

} // namespace
} // namespace vantrel::tests

// Without arguments the whole table; three are what its own child processes get. 1 when a bound is broken or
// an answer wrong, 2 when something could not be measured.
int wmain(int count, wchar_t** arguments) {
    using namespace vantrel::tests;
    if (count < 4) {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        return Report(program);
    }
    return Measure(Rows().at(std::wcstoul(arguments[1], nullptr, 10)), arguments[2],
                   std::wcstod(arguments[3], nullptr));
}
