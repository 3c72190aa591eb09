#include "codec/PayloadReader.h"

#include <algorithm>
#include <cstring>

namespace vantrel {

PayloadReader::PayloadReader(ByteSource& source, std::uint32_t dataOffset, std::uint32_t dataSize,
                             std::uint32_t windowSize)
    : source_(source), dataOffset_(dataOffset), dataSize_(dataSize), windowSize_(windowSize),
      // Intentionally signed: the trailer of a payload that ends at 2 GiB or beyond can't be read.
      trailerOffset_(static_cast<std::int32_t>(dataOffset + dataSize)) {}

bool PayloadReader::Read(std::int64_t position, void* buffer, std::uint64_t count) {
    return Contains(position, count) && Copy(static_cast<std::uint64_t>(position), buffer, count);
}

const std::uint8_t* PayloadReader::View(std::int64_t position, std::uint64_t count) {
    if (!Contains(position, count))
        return nullptr;
    const auto begin = static_cast<std::uint64_t>(position);
    return HeldFrom(begin) >= count || MoveTo(begin, count) ? bytes_.data() + (begin - held_.begin) : nullptr;
}

bool PayloadReader::ReadRest() {
    std::sort(read_.begin(), read_.end(), [](Range a, Range b) { return a.begin < b.begin; });
    std::uint64_t reached = 0;
    for (const Range range : read_) {
        if (!ReadGap(reached, std::min<std::uint64_t>(range.begin, dataSize_)))
            return false;
        reached = std::max(reached, range.end);
    }
    return ReadGap(reached, dataSize_);
}

bool PayloadReader::ReadTrailer(char (&trailer)[sizeof zmiTrailer]) {
    // If offsets wrap at 4 GiB, the trailer does not follow the payload.
    if (trailerOffset_ != std::int64_t{dataOffset_} + dataSize_)
        return source_.ReadAt(trailerOffset_, trailer, sizeof trailer);
    // A small file's payload and trailer take one read.
    if (std::uint64_t{dataSize_} + sizeof trailer <= windowSize_ && !MoveTo(0, dataSize_ + sizeof trailer))
        return false;
    return Copy(dataSize_, trailer, sizeof trailer);
}

std::uint64_t PayloadReader::HeldFrom(std::uint64_t position) const {
    return position >= held_.begin && position < held_.end ? held_.end - position : 0;
}

bool PayloadReader::MoveTo(std::uint64_t position, std::uint64_t count) {
    const std::uint64_t kept = HeldFrom(position);
    const std::uint64_t length = std::max(count, std::min<std::uint64_t>(windowSize_, dataSize_ - position));
    if (bytes_.size() < length)
        bytes_.resize(length);
    if (kept > 0)
        std::memmove(bytes_.data(), bytes_.data() + (position - held_.begin), kept);
    held_ = {position, position + kept};
    if (!ReadSource(held_.end, bytes_.data() + kept, length - kept))
        return false;
    held_.end = position + length;
    return true;
}

bool PayloadReader::Copy(std::uint64_t position, void* buffer, std::uint64_t count) {
    const std::uint64_t held = std::min(HeldFrom(position), count);
    if (held > 0)
        std::memcpy(buffer, bytes_.data() + (position - held_.begin), held);
    return ReadSource(position + held, static_cast<std::uint8_t*>(buffer) + held, count - held);
}

bool PayloadReader::ReadSource(std::uint64_t position, void* buffer, std::uint64_t count) {
    if (count == 0)
        return true;
    if (!source_.ReadAt(static_cast<std::int64_t>(dataOffset_ + position), buffer,
                        static_cast<std::uint32_t>(count)))
        return false;
    if (!read_.empty() && read_.back().end == position)
        read_.back().end += count;
    else
        read_.push_back({position, position + count});
    return true;
}

bool PayloadReader::ReadGap(std::uint64_t begin, std::uint64_t end) {
    held_ = {};
    while (begin < end) {
        const auto count = static_cast<std::uint32_t>(std::min<std::uint64_t>(end - begin, windowSize_));
        if (bytes_.size() < count)
            bytes_.resize(count);
        if (!source_.ReadAt(static_cast<std::int64_t>(dataOffset_ + begin), bytes_.data(), count))
            return false;
        begin += count;
    }
    return true;
}

} // namespace vantrel
