#include "benchmarks/WorkingSet.h"

#include "benchmarks/Library.h"

#include <psapi.h>

#include <stdexcept>

namespace vantrel::bench {

namespace {

constexpr unsigned edge = 256;

PROCESS_MEMORY_COUNTERS Counters() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters;
}

} // namespace

std::uint64_t PeakGrowth(const std::filesystem::path& dll, const std::wstring& warmUp,
                         const std::wstring& path) {
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(program) + L"\" --working-set \"" + dll.wstring() + L"\" \"" +
                           warmUp + L"\" \"" + path + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process;
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
        throw std::runtime_error("cannot start a process to measure the working set in");
    const UniqueKernelHandle handle(process.hProcess);
    const UniqueKernelHandle thread(process.hThread);
    WaitForSingleObject(handle.get(), INFINITE);
    DWORD kibibytes = 0;
    GetExitCodeProcess(handle.get(), &kibibytes);
    if (kibibytes == 0)
        throw std::runtime_error("the working set could not be measured");
    return std::uint64_t{kibibytes} * 1024;
}

int ServeWorkingSet(const std::filesystem::path& dll, const wchar_t* warmUp, const wchar_t* path) {
    const Library library(dll);
    library.Extract(warmUp, edge);
    const std::size_t before = Counters().WorkingSetSize;
    library.Extract(path, edge);
    return static_cast<int>((Counters().PeakWorkingSetSize - before) / 1024);
}

} // namespace vantrel::bench
