#include "support/FileObject.h"

#include <algorithm>
#include <iterator>

namespace vantrel {

namespace {

struct OpenMode {
    DWORD access;
    DWORD disposition;
};

constexpr OpenMode openModes[] = {
    {GENERIC_READ, OPEN_EXISTING},
    {GENERIC_WRITE, CREATE_ALWAYS},
    {GENERIC_WRITE, OPEN_EXISTING},
    {GENERIC_WRITE, OPEN_ALWAYS},
    {GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS},
    {GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING},
};

UniqueFile OpenFile(const wchar_t* name, DWORD access, DWORD shareMode, DWORD disposition, DWORD flags) {
    const HANDLE handle = CreateFileW(name, access, shareMode, nullptr, disposition, flags, nullptr);
    return UniqueFile(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

std::uint64_t Combine(DWORD high, DWORD low) {
    return std::uint64_t{high} << 32 | low;
}

// A size whose low half is all ones counts as a failure, without a look at GetLastError.
std::uint64_t SizeOf(HANDLE file) {
    DWORD high = 0;
    const DWORD low = GetFileSize(file, &high);
    return low == INVALID_FILE_SIZE ? 0 : Combine(high, low);
}

std::uint64_t SizeFromFolder(const wchar_t* name) {
    WIN32_FIND_DATAW data;
    const HANDLE found = FindFirstFileW(name, &data);
    if (found == INVALID_HANDLE_VALUE)
        return 0;
    const UniqueFindFile search(found);
    return Combine(data.nFileSizeHigh, data.nFileSizeLow);
}

} // namespace

std::uint64_t FileObject::fileSizeByName(const wchar_t* name) {
    const UniqueFile file =
        OpenFile(name, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
    if (!file)
        return GetLastError() == ERROR_ACCESS_DENIED ? SizeFromFolder(name) : 0;
    return SizeOf(file.get());
}

bool FileObject::open(const wchar_t* name, std::uint32_t mode, DWORD flagsAndAttributes, DWORD shareMode) {
    close();
    if (mode >= std::size(openModes))
        return false;
    handle_ =
        OpenFile(name, openModes[mode].access, shareMode, openModes[mode].disposition, flagsAndAttributes);
    return handle_ != nullptr;
}

std::uint64_t FileObject::size() const {
    return handle_ ? SizeOf(handle_.get()) : 0;
}

bool FileObject::read(std::uint32_t count, void* buffer) {
    DWORD done = 0;
    if (ReadFile(handle_.get(), buffer, count, &done, nullptr))
        return done == count;
    // Some drivers refuse a large read as a whole but serve it in pieces.
    return GetLastError() == ERROR_NO_SYSTEM_RESOURCES &&
           readInChunks(count, static_cast<std::uint8_t*>(buffer));
}

bool FileObject::readInChunks(std::uint32_t count, std::uint8_t* buffer) {
    while (count > 0) {
        const DWORD chunk = std::min<DWORD>(count, 1024 * 1024);
        DWORD done = 0;
        if (!ReadFile(handle_.get(), buffer, chunk, &done, nullptr) || done != chunk)
            return false;
        buffer += chunk;
        count -= chunk;
    }
    return true;
}

bool FileObject::seek(DWORD method, std::int64_t distance) {
    if (!handle_)
        return false;
    LONG high = static_cast<LONG>(distance >> 32);
    // The low half may rightly be all ones, so only the error code tells; success need not clear an older
    // one.
    SetLastError(NO_ERROR);
    return SetFilePointer(handle_.get(), static_cast<LONG>(distance), &high, method) !=
               INVALID_SET_FILE_POINTER ||
           GetLastError() == NO_ERROR;
}

bool FileObject::close() {
    if (!handle_)
        return false;
    handle_.reset();
    return true;
}

} // namespace vantrel
