// Reading and decoding from a source that a test holds.
#pragma once

#include "codec/Decoder.h"
#include "codec/FileReader.h"
#include "tests/builder/MemorySource.h"
#include "tests/builder/ZmiVerdict.h"

namespace vantrel::tests {

inline bool LoadFrom(ByteSource& source, DecodedImage& image, std::uint32_t framesWanted = allFrames) {
    FileHeader header;
    std::optional<PayloadReader> payload;
    return readFile(source, zmiPictureKind, header, payload) && decode(*payload, image, framesWanted);
}

inline Verdict VerdictOf(ByteSource&& source, std::uint32_t framesWanted = allFrames) {
    DecodedImage image;
    try {
        return LoadFrom(source, image, framesWanted) ? Verdict::Loads : Verdict::Fails;
    } catch (const std::out_of_range&) {
        return Verdict::Throws;
    }
}

inline Verdict VerdictOf(const Bytes& file, std::uint32_t framesWanted = allFrames) {
    return VerdictOf(MemorySource(file), framesWanted);
}

} // namespace vantrel::tests
