#include "tools/pack/StoredFacts.h"

#include "tools/terminal/LongPath.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <limits>
#include <utility>

namespace vantrel::tools {

namespace {

// Unsigned numbers at any place in a file; 0 where the file or the part has ended.
class FileNumbers {
public:
    explicit FileNumbers(const std::filesystem::path& file) : stream_(LongPath(file), std::ios::binary) {}

    // From now on, offsets count from `begin`, and there is nothing from `end` on.
    void EnterPart(std::uint64_t begin, std::uint64_t end) {
        begin_ = begin;
        size_ = end - begin;
    }
    void SetBigEndian(bool bigEndian) { bigEndian_ = bigEndian; }

    std::uint32_t U16(std::uint64_t at) { return Read(at, 2); }
    std::uint32_t U32(std::uint64_t at) { return Read(at, 4); }

private:
    std::uint32_t Read(std::uint64_t at, unsigned count) {
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

    std::ifstream stream_;
    std::uint64_t begin_ = 0;
    std::uint64_t size_ = std::numeric_limits<std::int64_t>::max();
    bool bigEndian_ = true;
};

constexpr int mostParts = 64; // what is wanted is among the first; a hostile file may have millions
constexpr std::uint64_t tiffEntrySize = 12;

// Where the directories of a TIFF structure are, but not of a BigTIFF; sets the numbers' order.
std::vector<std::uint64_t> FindDirectories(FileNumbers& tiff, std::size_t most) {
    std::vector<std::uint64_t> directories;
    tiff.SetBigEndian(tiff.U16(0) == 0x4D4D);
    if ((tiff.U16(0) != 0x4D4D && tiff.U16(0) != 0x4949) || tiff.U16(2) != 42)
        return directories;
    for (std::uint64_t at = tiff.U32(4); at != 0 && directories.size() < most;
         at = tiff.U32(at + 2 + tiffEntrySize * tiff.U16(at)))
        directories.push_back(at);
    return directories;
}

Orientation FindOrientation(FileNumbers& tiff, std::uint64_t directory) {
    constexpr auto byNumber = std::to_array<Orientation>({
        {},
        {.mirroredX = true},
        {.mirroredX = true, .mirroredY = true},
        {.mirroredY = true},
        {.transposed = true},
        {.mirroredY = true, .transposed = true},
        {.mirroredX = true, .mirroredY = true, .transposed = true},
        {.mirroredX = true, .transposed = true},
    });
    constexpr std::uint32_t orientationTag = 0x0112;
    constexpr std::uint32_t shortType = 3;
    const auto end = directory + 2 + tiffEntrySize * std::min<std::uint32_t>(tiff.U16(directory), mostParts);
    for (std::uint64_t entry = directory + 2; entry < end; entry += tiffEntrySize)
        if (const std::uint32_t number = tiff.U16(entry + 8); tiff.U16(entry) == orientationTag &&
                                                              tiff.U16(entry + 2) == shortType &&
                                                              number >= 1 && number <= byNumber.size())
            return byNumber[number - 1];
    return {};
}

// Leaves the numbers to those of the EXIF block of a JPEG file, if it has one.
void EnterExif(FileNumbers& jpeg) {
    constexpr std::uint32_t app1 = 0xFFE1;
    constexpr std::uint32_t startOfScan = 0xFFDA;
    constexpr std::uint32_t exif = 0x45786966;
    std::uint64_t at = 2; // behind the start of the image
    for (int i = 0; i < mostParts; ++i) {
        const std::uint32_t marker = jpeg.U16(at);
        const std::uint32_t length = jpeg.U16(at + 2);
        if (marker < 0xFF00 || marker == startOfScan || length < 2)
            return;
        if (marker == app1 && jpeg.U32(at + 4) == exif)
            return jpeg.EnterPart(at + 10, at + 2 + length);
        at += 2 + length;
    }
}

} // namespace

std::vector<Orientation> ReadOrientations(const std::filesystem::path& file, unsigned count) {
    FileNumbers numbers(file);
    if (numbers.U16(0) == 0xFFD8)
        EnterExif(numbers);
    std::vector<Orientation> orientations;
    for (const std::uint64_t directory : FindDirectories(numbers, count))
        orientations.push_back(FindOrientation(numbers, directory));
    return orientations;
}

unsigned FindLargestIcon(const std::filesystem::path& file, unsigned count) {
    FileNumbers numbers(file);
    numbers.SetBigEndian(false);
    std::pair<std::uint32_t, std::uint32_t> most;
    unsigned largest = 0;
    for (unsigned i = 0; i < count; ++i) {
        const std::uint64_t entry = 6 + std::uint64_t{16} * i;
        const std::uint32_t sides = numbers.U16(entry) + 0xFFFF; // in a byte each, 0 for 256
        const std::uint32_t pixels = ((sides & 255) + 1) * ((sides >> 8 & 255) + 1);
        // Bits per pixel, in the bitmap's own header; a PNG has letters there, which count as more.
        const std::pair found(pixels, numbers.U16(std::uint64_t{numbers.U32(entry + 12)} + 14));
        if (found > most) {
            most = found;
            largest = i;
        }
    }
    return largest;
}

bool HasMoreFrames(const std::filesystem::path& file, unsigned count) {
    constexpr std::uint32_t png = 0x89504E47;
    constexpr std::uint32_t animationControl = 0x6163544C;
    constexpr std::uint32_t imageData = 0x49444154;
    FileNumbers numbers(file);
    if (numbers.U32(0) != png)
        return FindDirectories(numbers, std::size_t{count} + 1).size() > count;
    std::uint64_t at = 8;
    for (int i = 0; i < mostParts && numbers.U32(at + 4) != imageData; ++i) {
        if (numbers.U32(at + 4) == animationControl)
            return numbers.U32(at + 8) > count;
        at += 12 + std::uint64_t{numbers.U32(at)};
    }
    return false;
}

} // namespace vantrel::tools
