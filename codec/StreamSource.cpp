#include "codec/StreamSource.h"

namespace vantrel {

std::uint64_t StreamSource::Size() {
    STATSTG stat{};
    return SUCCEEDED(stream_.Stat(&stat, STATFLAG_NONAME)) ? stat.cbSize.QuadPart : 0;
}

bool StreamSource::ReadAt(std::int64_t offset, void* buffer, std::uint32_t count) {
    if (offset != position_) {
        LARGE_INTEGER distance;
        distance.QuadPart = offset;
        if (FAILED(stream_.Seek(distance, STREAM_SEEK_SET, nullptr)))
            return false;
    }
    ULONG read = 0;
    const bool done = SUCCEEDED(stream_.Read(buffer, count, &read)) && read == count;
    position_ = done ? std::optional(offset + count) : std::nullopt;
    return done;
}

} // namespace vantrel
