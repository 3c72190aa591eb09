#include "codec/ReadFile.h"

#include <cstring>

namespace vantrel {

namespace {

// All sums are 32-bit and may wrap: only the low 32 bits of a file's size count.
bool IsValid(const FileHeader& header, std::uint8_t expectedKind, std::uint64_t fileSize) {
    return std::memcmp(header.magic, zmiMagic, sizeof zmiMagic) == 0 && header.version == zmiVersion &&
           header.headerSize == sizeof(FileHeader) && header.kind == expectedKind &&
           header.dataOffset >= sizeof(FileHeader) &&
           header.dataOffset + header.dataSize + std::uint32_t{sizeof zmiTrailer} ==
               static_cast<std::uint32_t>(fileSize);
}

} // namespace

bool readFile(ByteSource& source, std::uint8_t expectedKind, FileHeader& header,
              std::optional<PayloadReader>& payload, std::uint32_t windowSize) {
    header = {};
    payload.reset();

    const std::uint64_t fileSize = source.Size();
    FileHeader read;
    if (fileSize == 0 || !source.ReadAt(0, &read, sizeof read))
        return false;
    header = read;
    if (!IsValid(header, expectedKind, fileSize))
        return false;

    // Copies, since a reference can't bind to a packed field.
    payload.emplace(source, std::uint32_t{header.dataOffset}, std::uint32_t{header.dataSize}, windowSize);
    char trailer[sizeof zmiTrailer];
    if (payload->ReadTrailer(trailer) && std::memcmp(trailer, zmiTrailer, sizeof trailer) == 0)
        return true;
    payload.reset();
    return false;
}

} // namespace vantrel
