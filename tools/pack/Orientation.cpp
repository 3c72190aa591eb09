#include "tools/pack/Orientation.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>

namespace vantrel::tools {

namespace {

using namespace std::literals;

// The bytes of a TIFF structure. Reading beyond the end gives 0, which is never a valid count or value.
class TiffBytes {
public:
    explicit TiffBytes(std::string_view bytes) : bytes_(bytes), bigEndian_(bytes.starts_with("MM")) {}

    unsigned U16(std::size_t at) const {
        return Byte(bigEndian_ ? at : at + 1) << 8 | Byte(bigEndian_ ? at + 1 : at);
    }
    std::size_t U32(std::size_t at) const {
        const std::size_t first = U16(at);
        const std::size_t second = U16(at + 2);
        return bigEndian_ ? first << 16 | second : second << 16 | first;
    }

private:
    unsigned Byte(std::size_t at) const {
        return at < bytes_.size() ? static_cast<unsigned char>(bytes_[at]) : 0U;
    }

    std::string_view bytes_;
    bool bigEndian_;
};

unsigned FindOrientation(const TiffBytes& tiff) {
    constexpr unsigned orientationTag = 0x0112;
    constexpr unsigned shortType = 3;
    constexpr std::size_t entrySize = 12;
    const std::size_t directory = tiff.U32(4);
    const std::size_t count = tiff.U16(directory);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = directory + 2 + i * entrySize;
        if (tiff.U16(entry) == orientationTag)
            return tiff.U16(entry + 2) == shortType ? tiff.U16(entry + 8) : 1;
    }
    return 1;
}

} // namespace

Orientation OrientationFromExif(unsigned number) {
    constexpr auto known = std::to_array<Orientation>({
        {},
        {.mirroredX = true},
        {.mirroredX = true, .mirroredY = true},
        {.mirroredY = true},
        {.transposed = true},
        {.mirroredY = true, .transposed = true},
        {.mirroredX = true, .mirroredY = true, .transposed = true},
        {.mirroredX = true, .transposed = true},
    });
    return number >= 1 && number <= known.size() ? known[number - 1] : Orientation{};
}

unsigned ReadJpegOrientation(const std::filesystem::path& file) {
    constexpr int mostSegments = 64; // EXIF is among the first; a hostile file may have millions
    constexpr unsigned char app1 = 0xE1;
    constexpr unsigned char startOfScan = 0xDA;
    constexpr auto exif = "Exif\0\0"sv;

    std::ifstream stream(file, std::ios::binary);
    stream.seekg(2); // the start of the image
    for (int i = 0; i < mostSegments; ++i) {
        std::array<unsigned char, 4> head{};
        if (!stream.read(reinterpret_cast<char*>(head.data()), head.size()) || head[0] != 0xFF ||
            head[1] == startOfScan)
            break;
        const std::streamoff length = (head[2] << 8 | head[3]) - 2;
        if (length < 0)
            break;
        if (head[1] != app1) {
            stream.seekg(length, std::ios::cur);
            continue;
        }
        std::string segment(static_cast<std::size_t>(length), '\0');
        stream.read(segment.data(), length);
        if (segment.starts_with(exif))
            return FindOrientation(TiffBytes(std::string_view(segment).substr(exif.size())));
    }
    return 1;
}

} // namespace vantrel::tools
