// Reading and decoding from a source that a test holds.
#pragma once

#include "codec/Decoder.h"
#include "codec/FileReader.h"
#include "tests/builder/MemorySource.h"
#include "tests/builder/ZmiVerdict.h"

namespace vantrel::tests {

inline bool LoadFrom(ByteSource& source, DecodedImage& image, std::uint32_t framesWanted = allFrames,
                     const PixelTaker& takePixels = {}) {
    FileWindow file(source);
    FileHeader header;
    std::optional<PayloadReader> payload;
    return readFile(file, zmiPictureKind, header, payload) &&
           decode(*payload, image, framesWanted, takePixels);
}

template <class Source>
Verdict VerdictOf(Source&& source, std::uint32_t framesWanted = allFrames) {
    DecodedImage image;
    try {
        return LoadFrom(source, image, framesWanted) ? Verdict::Loads : Verdict::Fails;
    } catch (const std::out_of_range&) {
        return Verdict::Throws;
    }
}

} // namespace vantrel::tests
