#include "codec/FileWindow.h"

#include <algorithm>
#include <cstring>

namespace vantrel {

namespace {

constexpr std::uint32_t windowSize = 64 * 1024;

} // namespace

const std::uint8_t* FileWindow::View(std::int64_t offset, std::uint32_t count) {
    if (offset < 0)
        return nullptr;
    const auto begin = static_cast<std::uint64_t>(offset);
    return HeldFrom(begin) >= count || MoveTo(begin, count) ? bytes_.data() + (begin - held_.begin) : nullptr;
}

bool FileWindow::Read(std::int64_t offset, void* buffer, std::uint32_t count) {
    if (offset < 0)
        return false;
    const auto begin = static_cast<std::uint64_t>(offset);
    const std::uint64_t held = std::min<std::uint64_t>(HeldFrom(begin), count);
    if (held > 0)
        std::memcpy(buffer, bytes_.data() + (begin - held_.begin), held);
    return ReadSource(begin + held, static_cast<std::uint8_t*>(buffer) + held, count - held);
}

bool FileWindow::ReadRest(std::uint64_t begin, std::uint64_t end) {
    std::sort(read_.begin(), read_.end(), [](Range a, Range b) { return a.begin < b.begin; });
    std::uint64_t reached = begin;
    for (const Range range : read_) {
        if (!ReadGap(reached, std::min(range.begin, end)))
            return false;
        reached = std::max(reached, range.end);
    }
    return ReadGap(reached, end);
}

std::uint64_t FileWindow::HeldFrom(std::uint64_t offset) const {
    return offset >= held_.begin && offset < held_.end ? held_.end - offset : 0;
}

bool FileWindow::MoveTo(std::uint64_t offset, std::uint32_t count) {
    const std::uint64_t kept = HeldFrom(offset);
    // Only the low half of a size counts: a source may claim more than it has.
    const std::uint64_t end =
        std::min<std::uint64_t>(offset + windowSize, static_cast<std::uint32_t>(fileSize_));
    const std::uint64_t length = std::max(end, offset + count) - offset;
    if (bytes_.size() < length)
        bytes_.resize(length);
    if (kept > 0)
        std::memmove(bytes_.data(), bytes_.data() + (offset - held_.begin), kept);
    held_ = {offset, offset + kept};
    if (!ReadSource(held_.end, bytes_.data() + kept, length - kept))
        return false;
    held_.end = offset + length;
    return true;
}

bool FileWindow::ReadSource(std::uint64_t offset, void* buffer, std::uint64_t count) {
    if (count == 0)
        return true;
    if (!source_.ReadAt(static_cast<std::int64_t>(offset), buffer, static_cast<std::uint32_t>(count)))
        return false;
    if (!read_.empty() && read_.back().end == offset)
        read_.back().end += count;
    else
        read_.push_back({offset, offset + count});
    return true;
}

bool FileWindow::ReadGap(std::uint64_t begin, std::uint64_t end) {
    held_ = {};
    while (begin < end) {
        const auto count = static_cast<std::uint32_t>(std::min<std::uint64_t>(end - begin, windowSize));
        if (bytes_.size() < count)
            bytes_.resize(count);
        if (!source_.ReadAt(static_cast<std::int64_t>(begin), bytes_.data(), count))
            return false;
        begin += count;
    }
    return true;
}

} // namespace vantrel
