// Numbers at any place in a file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>

namespace vantrel::tools {

// Unsigned numbers; 0 where the file or the part has ended.
class FileNumbers {
public:
    explicit FileNumbers(const std::filesystem::path& file);

    // From now on, offsets count from `begin`, and there is nothing from `end` on.
    void EnterPart(std::uint64_t begin, std::uint64_t end);
    void SetBigEndian(bool bigEndian) { bigEndian_ = bigEndian; }

    std::uint32_t U16(std::uint64_t at) { return Read(at, 2); }
    std::uint32_t U32(std::uint64_t at) { return Read(at, 4); }

private:
    std::uint32_t Read(std::uint64_t at, unsigned count);

    std::ifstream stream_;
    std::uint64_t begin_ = 0;
    std::uint64_t size_ = std::numeric_limits<std::int64_t>::max();
    bool bigEndian_ = false;
};

} // namespace vantrel::tools
