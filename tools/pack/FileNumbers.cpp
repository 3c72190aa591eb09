#include "tools/pack/FileNumbers.h"

#include "tools/terminal/LongPath.h"

#include <array>

namespace vantrel::tools {

FileNumbers::FileNumbers(const std::filesystem::path& file) : stream_(LongPath(file), std::ios::binary) {}

void FileNumbers::EnterPart(std::uint64_t begin, std::uint64_t end) {
    begin_ = begin;
    size_ = end - begin;
}

std::uint32_t FileNumbers::Read(std::uint64_t at, unsigned count) {
    std::array<char, 4> bytes{};
    stream_.clear();
    if (at + count > size_ || !stream_.seekg(static_cast<std::streamoff>(begin_ + at)) ||
        !stream_.read(bytes.data(), count))
        return 0;
    std::uint32_t number = 0;
    for (unsigned i = 0; i < count; ++i)
        number = number << 8 | static_cast<unsigned char>(bytes[bigEndian_ ? i : count - 1 - i]);
    return number;
}

} // namespace vantrel::tools
