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

constexpr std::uint64_t Join(DWORD high, DWORD low) {
    return std::uint64_t{high} << 32 | low;
}

std::uint64_t SizeOf(HANDLE file) {
    DWORD high = 0;
    const DWORD low = GetFileSize(file, &high);
    // A size whose low half is all ones counts as a failure, regardless of GetLastError.
    return low == INVALID_FILE_SIZE ? 0 : Join(high, low);
}

// Null when it can't be opened.
UniqueKernelHandle Open(const wchar_t* name, DWORD access, DWORD shareMode, DWORD disposition,
                        DWORD flagsAndAttributes) {
    const HANDLE handle =
        CreateFileW(name, access, shareMode, nullptr, disposition, flagsAndAttributes, nullptr);
    return UniqueKernelHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

} // namespace

std::uint64_t FileObject::fileSizeByName(const wchar_t* name) {
    if (const UniqueKernelHandle file =
            Open(name, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL))
        return SizeOf(file.get());
    if (GetLastError() != ERROR_ACCESS_DENIED)
        return 0;
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(name, &found);
    if (search == INVALID_HANDLE_VALUE)
        return 0;
    const UniqueSearch owner(search);
    return Join(found.nFileSizeHigh, found.nFileSizeLow);
}

bool FileObject::open(const wchar_t* name, std::uint32_t mode, DWORD flagsAndAttributes, DWORD shareMode) {
    close();
    if (mode >= std::size(openModes))
        return false;
    handle_ = Open(name, openModes[mode].access, shareMode, openModes[mode].disposition, flagsAndAttributes);
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
           ReadInChunks(count, static_cast<std::uint8_t*>(buffer));
}

bool FileObject::ReadInChunks(std::uint32_t count, std::uint8_t* buffer) {
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
    // The low half may legitimately be all ones, so only the error code decides; success need not reset an
    // earlier one.
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
