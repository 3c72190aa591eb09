#include "tools/terminal/OutputFile.h"

#include "tools/terminal/LongPath.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>
#include <string>
#include <system_error>
#include <utility>

namespace vantrel::tools {

namespace {

std::mutex g_liveMutex;
std::set<std::filesystem::path> g_liveFiles;

[[noreturn]] void Fail(const char* what, const std::filesystem::path& path, DWORD error = GetLastError()) {
    throw std::filesystem::filesystem_error(what, path,
                                            std::error_code(static_cast<int>(error), std::system_category()));
}

// Runs on a thread of its own. It keeps the lock, so that no file is committed any more, and gives a writer
// that still has its file open a moment to close it. Ends the process itself: Wine's own way ends it with
// exit code 0.
BOOL WINAPI DeleteLiveFiles(DWORD) {
    g_liveMutex.lock();
    constexpr int attempts = 100;
    constexpr DWORD pauseMilliseconds = 10;
    for (int i = 0; i < attempts && !g_liveFiles.empty(); ++i) {
        std::erase_if(g_liveFiles, [](const std::filesystem::path& path) {
            return DeleteFileW(path.c_str()) != 0 || GetLastError() == ERROR_FILE_NOT_FOUND;
        });
        if (!g_liveFiles.empty())
            Sleep(pauseMilliseconds);
    }
    constexpr UINT controlCExit = 0xC000013A;
    ExitProcess(controlCExit);
}

void CreateFolders(const std::filesystem::path& folder) {
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            Fail("not a folder", folder, ERROR_DIRECTORY);
        return;
    }
    if (const auto parent = folder.parent_path(); parent != folder && parent != folder.root_name())
        CreateFolders(parent);
    if (CreateDirectoryW(folder.c_str(), nullptr) == 0 && GetLastError() != ERROR_ALREADY_EXISTS)
        Fail("cannot create the folder", folder);
}

} // namespace

OutputFile::OutputFile(const std::filesystem::path& target)
    : target_(LongPath(target)), handle_(INVALID_HANDLE_VALUE) {
    static std::atomic<unsigned> number = 0;
    // Not made from the target's name, which may have as many characters already as a name can have.
    const std::filesystem::path folder = target_.parent_path();
    temporary_ = LongPath(folder / (L"~" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                                    std::to_wstring(++number) + L".tmp"));
    CreateFolders(LongPath(folder));

    const std::lock_guard lock(g_liveMutex);
    static const BOOL handled = SetConsoleCtrlHandler(DeleteLiveFiles, TRUE);
    static_cast<void>(handled);
    g_liveFiles.insert(temporary_);
}

OutputFile::~OutputFile() {
    Close();
    if (committed_)
        return;
    const std::lock_guard lock(g_liveMutex);
    DeleteFileW(temporary_.c_str());
    g_liveFiles.erase(temporary_);
}

void OutputFile::Write(std::span<const std::byte> bytes) {
    if (handle_ == INVALID_HANDLE_VALUE) {
        const std::lock_guard lock(g_liveMutex);
        handle_ = CreateFileW(temporary_.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                              CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle_ == INVALID_HANDLE_VALUE)
            Fail("cannot create", target_);
    }
    while (!bytes.empty()) {
        constexpr std::size_t largestWrite = 1U << 26;
        const auto size = static_cast<DWORD>(std::min(bytes.size(), largestWrite));
        DWORD written = 0;
        if (WriteFile(handle_, bytes.data(), size, &written, nullptr) == 0)
            Fail("cannot write", target_);
        bytes = bytes.subspan(written);
    }
}

void OutputFile::Commit() {
    Close();
    const std::lock_guard lock(g_liveMutex);
    if (MoveFileExW(temporary_.c_str(), target_.c_str(), MOVEFILE_REPLACE_EXISTING) == 0)
        Fail("cannot put the finished file in place", target_);
    g_liveFiles.erase(temporary_);
    committed_ = true;
}

void OutputFile::Close() {
    if (handle_ != INVALID_HANDLE_VALUE)
        CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
}

} // namespace vantrel::tools
