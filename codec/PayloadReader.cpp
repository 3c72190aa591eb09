#include "codec/PayloadReader.h"

#include <algorithm>

namespace vantrel {

namespace {

constexpr std::uint32_t windowSize = 64 * 1024;

} // namespace

PayloadReader::PayloadReader(ByteSource& source, std::uint32_t dataOffset, std::uint32_t dataSize)
    : source_(source), dataOffset_(dataOffset), dataSize_(dataSize) {}

std::int64_t PayloadReader::TablePosition(std::uint32_t fileOffset) const {
    return fileOffset - dataOffset_;
}

std::int64_t PayloadReader::PixelPosition(std::uint32_t fileOffset) const {
    return static_cast<std::int32_t>(fileOffset - dataOffset_);
}

bool PayloadReader::Contains(std::int64_t position, std::uint64_t count) const {
    return position >= 0 && position <= dataSize_ &&
           count <= dataSize_ - static_cast<std::uint64_t>(position);
}

bool PayloadReader::Read(std::int64_t position, void* buffer, std::uint64_t count) {
    if (!Contains(position, count))
        return false;
    const auto begin = static_cast<std::uint32_t>(position);
    const auto length = static_cast<std::uint32_t>(count);
    if (length == 0)
        return true;
    if (!source_.ReadAt(std::int64_t{dataOffset_} + begin, buffer, length))
        return false;
    covered_.push_back({begin, begin + length});
    return true;
}

bool PayloadReader::ReadRest() {
    std::sort(covered_.begin(), covered_.end(), [](Range a, Range b) { return a.begin < b.begin; });
    std::uint32_t reached = 0;
    for (const Range range : covered_) {
        if (range.begin > reached && !ReadGap(reached, range.begin))
            return false;
        reached = std::max(reached, range.end);
    }
    return ReadGap(reached, dataSize_);
}

bool PayloadReader::ReadGap(std::uint32_t begin, std::uint32_t end) {
    while (begin < end) {
        const std::uint32_t count = std::min(end - begin, windowSize);
        if (window_.size() < count)
            window_.resize(count);
        if (!source_.ReadAt(std::int64_t{dataOffset_} + begin, window_.data(), count))
            return false;
        begin += count;
    }
    return true;
}

} // namespace vantrel
