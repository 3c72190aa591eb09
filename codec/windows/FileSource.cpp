#include "codec/windows/FileSource.h"

namespace vantrel {

std::uint64_t FileSource::Size() {
    // A file that reports its size but can't be opened for reading is no picture either, so one open is
    // enough.
    if (!file_.open(name_, 0, 0, FILE_SHARE_READ | FILE_SHARE_WRITE))
        return 0;
    position_ = 0;
    return static_cast<std::uint32_t>(file_.size());
}

bool FileSource::ReadAt(std::int64_t offset, void* buffer, std::uint32_t count) {
    if (offset != position_ && !file_.seek(FILE_BEGIN, offset))
        return false;
    const bool done = file_.read(count, buffer);
    position_ = done ? std::optional(offset + count) : std::nullopt;
    return done;
}

} // namespace vantrel
