// A thin file object over the Windows file API.
#pragma once

#include "support/Handles.h"

#include <cstdint>

namespace vantrel {

// Used by one thread at a time; destruction closes. No operation throws.
class FileObject {
public:
    // Size in bytes of a file that need not be open, 0 on any failure. If the file denies all access, its
    // folder is asked.
    static std::uint64_t fileSizeByName(const wchar_t* name);

    // Closes an open file first. Modes: 0 read existing, 1 write, create always, 2 write existing, 3 write,
    // open or create, 4 read and write, open or create, 5 read and write existing; any other fails.
    bool open(const wchar_t* name, std::uint32_t mode, DWORD flagsAndAttributes, DWORD shareMode);

    // Size of the open file in bytes, 0 on any failure.
    std::uint64_t size() const;

    // True when exactly count bytes were read.
    bool read(std::uint32_t count, void* buffer);

    // method is FILE_BEGIN, FILE_CURRENT or FILE_END; distance in bytes.
    bool seek(DWORD method, std::int64_t distance);

    // False when nothing was open.
    bool close();

    // Null when closed.
    HANDLE handle() const { return handle_.get(); }

private:
    bool ReadInChunks(std::uint32_t count, std::uint8_t* buffer);

    UniqueKernelHandle handle_;
};

} // namespace vantrel
