// Where a ZMI file's bytes come from, whatever holds them.
#pragma once

#include <cstdint>

namespace vantrel {

class ByteSource {
public:
    // Size in bytes; 0 if empty or unknown.
    virtual std::uint64_t Size() = 0;
    // Reads exactly count bytes at a file offset, all or nothing: false on any failure, a short read
    // included; the buffer's contents are then unspecified. A negative offset is a failure.
    virtual bool ReadAt(std::int64_t offset, void* buffer, std::uint32_t count) = 0;

protected:
    ~ByteSource() = default;
};

} // namespace vantrel
