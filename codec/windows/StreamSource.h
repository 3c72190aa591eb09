// A ZMI file's bytes from a COM stream.
#pragma once

#include "codec/ByteSource.h"

#include <windows.h>

#include <objidl.h>

namespace vantrel {

// Borrows the stream, moves its position, and neither keeps a reference nor restores the position.
class StreamSource final : public ByteSource {
public:
    explicit StreamSource(IStream& stream) : stream_(stream) {}

    std::uint64_t Size() override;
    bool ReadAt(std::int64_t offset, void* buffer, std::uint32_t count) override;

private:
    IStream& stream_;
};

} // namespace vantrel
