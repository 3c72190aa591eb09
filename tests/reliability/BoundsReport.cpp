// bounds_report: what each kind of request costs for hostile files, compared with the bound on memory.
#include "tests/host/Requests.h"
#include "tests/host/ResourceWatch.h"
#include "tests/reliability/HostileFile.h"

#include <process.h>
#include <psapi.h>
#include <shlwapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>

namespace vantrel::tests {
namespace {

constexpr std::int64_t mebibyte = 1024 * 1024;
constexpr HostileFile smallFile = {.name = "64 x 64", .width = 64, .height = 64};

constexpr int notMeasurable = 77; // CTest counts this as skipped

using Names = std::vector<std::string_view>; // of requests
const Names pictures = {"thumbnail", "square image", "letterboxed image", "icons"};

struct Case {
    HostileFile file;
    bool showsInSquare = true;
    bool showsInBox = true; // one that is no square, or an icon: even if nothing of the picture is seen in it
    UINT edge = 256;
    Names requests = {"column", "title", "dimensions", "bit depth", "thumbnail", "icons"};
};

const Case cases[] = {
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
    {smallFile, false, false, 0, pictures},
    {smallFile, true, true, 2, pictures},
    // Without icons: what Wine and this program copy of them is more than the library may hold.
    {smallFile, true, true, 4096, {"thumbnail", "square image", "letterboxed image"}},
    {smallFile, false, false, 0xFFFFFFFF, pictures},
};

Request Find(std::string_view name, const std::wstring& path, UINT edge) {
    ComPtr<IStream> stream;
    SHCreateStreamOnFileEx(path.c_str(), STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr, &stream);
    const std::vector<Request> all = AllRequests(*stream.Get(), path.c_str(), edge);
    return *std::ranges::find(all, name, &Request::name);
}

bool IsForFacts(const Request& request) {
    return request.failure == S_FALSE;
}

bool Succeeds(const Case& each, const Request& request) {
    if (IsForFacts(request))
        return each.file.loads;
    const std::string_view name = request.name;
    return name == "thumbnail" || name == "square image" ? each.showsInSquare : each.showsInBox;
}

// Facts: 4 MiB. Pictures: plus frame 0's surface, if there can be one, plus the result.
std::int64_t Bound(const HostileFile& file, const Request& request, std::int64_t resultBytes) {
    if (IsForFacts(request) || !file.loads)
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
int Measure(const Case& each, std::string_view name, const std::wstring& path) {
    {
        // One-time costs of the system don't count.
        const ResourceWatch watch;
        Find(name, path + L"-small", 8).ask();
        if (watch.PeakBytes() == 0)
            return 2;
    }

    const ResourceWatch watch;
    const std::size_t before = Memory().WorkingSetSize;
    const Request request = Find(name, path, each.edge);
    const Answer answer = request.ask();
    const auto held = static_cast<std::int64_t>(watch.PeakBytes());
    const auto seen = static_cast<std::int64_t>(Memory().PeakWorkingSetSize - before);

    const int pixelBytes = name == "icons" ? 8 : 4; // with its mask's
    std::int64_t bytes = 0;
    for (const Picture& picture : answer.pictures)
        bytes += pixelBytes * static_cast<std::int64_t>(picture.words.size());
    const std::int64_t bound = Bound(each.file, request, bytes);
    // Wine's StretchBlt makes its own copy of the result when it enlarges; this program makes another one
    // later.
    const bool exceeded = held >= bound || seen >= bound + bytes;
    const bool wrong = (answer.result == S_OK) != Succeeds(each, request);
    std::printf("| %s | %s %u | %08lX | %lld | %lld | %lld | %s |\n", each.file.name, request.name, each.edge,
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
    bool failed = !Write(smallFile, path + L"-small");
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        failed |= !Write(cases[i].file, path);
        for (std::size_t k = 0; k < cases[i].requests.size(); ++k) {
            std::fflush(stdout);
            const auto code = static_cast<unsigned>(
                _wspawnl(_P_WAIT, program, L"bounds_report", std::to_wstring(i).c_str(),
                         std::to_wstring(k).c_str(), (L"\"" + path + L"\"").c_str(), nullptr));
            if (code > 1)
                std::printf("%s: request %zu was not measured: exit code %u\n", cases[i].file.name, k, code);
            failed |= code != 0;
        }
    }
    for (const std::wstring& file : {path, path + L"-small"})
        failed |= !DeleteFileW(file.c_str());
    return failed ? 1 : 0;
}

} // namespace
} // namespace vantrel::tests

// Without arguments the whole table; child processes get three. Returns 1 if a bound is exceeded, an answer
// is wrong or something could not be measured; a child returns 2 for the latter.
int wmain(int count, wchar_t** arguments) {
    using namespace vantrel::tests;
    if (count < 4) {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        return Report(program);
    }
    const Case& each = cases[std::stoul(arguments[1])];
    return Measure(each, each.requests[std::stoul(arguments[2])], arguments[3]);
}
