#include "codec/windows/StreamSource.h"

namespace vantrel {

std::uint64_t StreamSource::Size() {
    STATSTG stat{};
    return SUCCEEDED(stream_.Stat(&stat, STATFLAG_NONAME)) ? stat.cbSize.QuadPart : 0;
}

bool StreamSource::ReadAt(std::int64_t offset, void* buffer, std::uint32_t count) {
    // Always seeks, since a stream may move on its own and would then return the wrong bytes.
    LARGE_INTEGER distance;
    distance.QuadPart = offset;
    ULONG done = 0;
    return SUCCEEDED(stream_.Seek(distance, STREAM_SEEK_SET, nullptr)) &&
           SUCCEEDED(stream_.Read(buffer, count, &done)) && done == count;
}

} // namespace vantrel
