#include "codec/FileReader.h"

#include <cstring>

namespace vantrel {

namespace {

// All sums are 32-bit and may wrap: only the low 32 bits of a file's size take part.
bool IsValid(const FileHeader& header, std::uint8_t expectedKind, std::uint64_t fileSize) {
    return std::memcmp(header.magic, zmiMagic, sizeof zmiMagic) == 0 && header.version == zmiVersion &&
           header.headerSize == sizeof(FileHeader) && header.kind == expectedKind &&
           header.dataOffset >= sizeof(FileHeader) &&
           header.dataOffset + header.dataSize + std::uint32_t{sizeof zmiTrailer} ==
               static_cast<std::uint32_t>(fileSize);
}

} // namespace

bool readFile(FileWindow& file, std::uint8_t expectedKind, FileHeader& header,
              std::optional<PayloadReader>& payload) {
    header = {};
    payload.reset();

    if (file.FileSize() == 0)
        return false;
    const std::uint8_t* const head = file.View(0, sizeof header);
    if (!head)
        return false;
    std::memcpy(&header, head, sizeof header);
    if (!IsValid(header, expectedKind, file.FileSize()))
        return false;

    // A signed position on purpose: a payload that ends at 2 GiB or beyond fails here.
    const auto trailerOffset = static_cast<std::int32_t>(header.dataOffset + header.dataSize);
    char trailer[sizeof zmiTrailer];
    if (!file.Read(trailerOffset, trailer, sizeof trailer) ||
        std::memcmp(trailer, zmiTrailer, sizeof trailer) != 0)
        return false;

    // Values, for packed fields bind to no reference.
    payload.emplace(PayloadReader(file, header.dataOffset, header.dataSize));
    return true;
}

} // namespace vantrel
