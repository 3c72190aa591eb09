#include "codec/FileSource.h"

#include <algorithm>

namespace vantrel {

namespace {

// Touches every page once. Fresh ones that the system meets in the midst of its copying cost three times as
// much.
void TouchPages(void* buffer, std::uint32_t count) {
    constexpr std::uint32_t pageSize = 4096;
    auto* const bytes = static_cast<volatile std::uint8_t*>(buffer);
    for (std::uint32_t i = 0; i < count; i += std::min(pageSize, count - i))
        bytes[i] = 0;
}

} // namespace

std::uint64_t FileSource::Size() {
    position_.reset();
    // A file that gives its size but can't be opened for reading is no picture either: one open tells both.
    return file_.open(name_, 0, 0, FILE_SHARE_READ | FILE_SHARE_WRITE)
               ? static_cast<std::uint32_t>(file_.size())
               : 0;
}

bool FileSource::ReadAt(std::int64_t offset, void* buffer, std::uint32_t count) {
    if (offset != position_ && !file_.seek(FILE_BEGIN, offset))
        return false;
    TouchPages(buffer, count);
    const bool done = file_.read(count, buffer);
    position_ = done ? std::optional(offset + count) : std::nullopt;
    return done;
}

} // namespace vantrel
