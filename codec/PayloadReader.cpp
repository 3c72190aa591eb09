#include "codec/PayloadReader.h"

namespace vantrel {

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
    return Contains(position, count) &&
           file_.Read(dataOffset_ + position, buffer, static_cast<std::uint32_t>(count));
}

const std::uint8_t* PayloadReader::View(std::int64_t position, std::uint64_t count) {
    return Contains(position, count) ? file_.View(dataOffset_ + position, static_cast<std::uint32_t>(count))
                                     : nullptr;
}

bool PayloadReader::ReadRest() {
    return file_.ReadRest(dataOffset_, std::uint64_t{dataOffset_} + dataSize_);
}

} // namespace vantrel
