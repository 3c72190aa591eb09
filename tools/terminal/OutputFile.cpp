#include "tools/terminal/OutputFile.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/LongPath.h"

#include <algorithm>
#include <mutex>
#include <set>
#include <string>

namespace vantrel::tools {

namespace {

std::mutex g_liveMutex;
std::set<std::filesystem::path> g_liveFiles;

// Not derived from the target's name, which may already have the maximum length. The counter distinguishes
// two processes with the same identifier on two machines that share a folder.
std::wstring TemporaryName() {
    LARGE_INTEGER counter{};
    QueryPerformanceCounter(&counter);
    return L"~" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(counter.QuadPart) + L".tmp";
}

} // namespace

OutputFile::OutputFile(const std::filesystem::path& target, FileKind kind, const OutputGuard& guard,
                       NameOrigin origin)
    : shown_(target), target_(LongPath(target)), mayReplace_(guard.MayReplace(origin)) {
    guard.Check(target, kind, origin);
    const std::filesystem::path folder = target_.parent_path();
    CreateFolders(LongPath(folder));

    const std::lock_guard lock(g_liveMutex);
    while (!handle_) {
        temporary_ = LongPath(folder / TemporaryName());
        const HANDLE handle =
            CreateFileW(temporary_.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                        CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle != INVALID_HANDLE_VALUE)
            handle_.reset(handle);
        else if (GetLastError() != ERROR_FILE_EXISTS)
            FailWithLastError(shown_.wstring() + L": cannot be created");
    }
    g_liveFiles.insert(temporary_);
}

OutputFile::~OutputFile() {
    if (committed_)
        return;
    handle_.reset();
    const std::lock_guard lock(g_liveMutex);
    DeleteFileW(temporary_.c_str());
    g_liveFiles.erase(temporary_);
}

void OutputFile::Write(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        constexpr std::size_t largestWrite = 1U << 26;
        const auto size = static_cast<DWORD>(std::min(bytes.size(), largestWrite));
        DWORD written = 0;
        if (!WriteFile(handle_.get(), bytes.data(), size, &written, nullptr))
            FailWithLastError(shown_.wstring() + L": cannot be written");
        bytes = bytes.subspan(written);
    }
}

std::uint64_t OutputFile::Seek(std::int64_t distance, DWORD origin) {
    LARGE_INTEGER wanted{};
    LARGE_INTEGER reached{};
    wanted.QuadPart = distance;
    if (!SetFilePointerEx(handle_.get(), wanted, &reached, origin))
        FailWithLastError(shown_.wstring() + L": cannot be written");
    return static_cast<std::uint64_t>(reached.QuadPart);
}

void OutputFile::Commit() {
    // Another run may be replacing the same file, or a virus scanner may have it open.
    constexpr int attempts = 10;
    constexpr DWORD pauseMilliseconds = 20;
    handle_.reset();
    for (int attempt = 1;; ++attempt) {
        DWORD error = ERROR_SUCCESS;
        {
            const std::lock_guard lock(g_liveMutex);
            const DWORD flags = mayReplace_ ? MOVEFILE_REPLACE_EXISTING : 0;
            committed_ = MoveFileExW(temporary_.c_str(), target_.c_str(), flags) != 0;
            if (committed_) {
                g_liveFiles.erase(temporary_);
                return;
            }
            error = GetLastError();
        }
        if (error == ERROR_ALREADY_EXISTS) {
            if (HaveSameBytes(target_, temporary_))
                return; // the target is what it should be, and the temporary file goes
            throw Failure(shown_.wstring() + L": this already exists with other contents; choose another "
                                             L"folder with --out, or --force to replace it");
        }
        if (attempt == attempts || (error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION))
            Check(HRESULT_FROM_WIN32(error), shown_.wstring() + L": cannot be moved into place");
        Sleep(pauseMilliseconds);
    }
}

void OutputFile::DiscardAll() {
    // Never unlocked: whoever is waiting for it must not go on.
    g_liveMutex.lock();
    constexpr int attempts = 50;
    constexpr DWORD pauseMilliseconds = 10;
    for (int i = 0; i < attempts && !g_liveFiles.empty(); ++i) {
        std::erase_if(g_liveFiles, [](const std::filesystem::path& path) {
            return DeleteFileW(path.c_str()) != 0 || GetLastError() == ERROR_FILE_NOT_FOUND;
        });
        if (!g_liveFiles.empty())
            Sleep(pauseMilliseconds);
    }
}

// Not create_directories: GCC's refuses long paths.
void OutputFile::CreateFolders(const std::filesystem::path& folder) const {
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            return;
        throw Failure(shown_.wstring() + L": there is a file where its folder should be");
    }
    if (const auto parent = folder.parent_path(); parent != folder && parent != folder.root_name())
        CreateFolders(parent);
    if (!CreateDirectoryW(folder.c_str(), nullptr) && GetLastError() != ERROR_ALREADY_EXISTS)
        FailWithLastError(shown_.wstring() + L": its folder cannot be created");
}

} // namespace vantrel::tools
