#include "codec/LoadFrom.h"

#include "codec/FileReader.h"

namespace vantrel {

bool LoadFrom(ByteSource& source, DecodedImage& image, Keep keep, const PixelTaker& takePixels,
              std::uint32_t windowSize) {
    FileHeader header;
    std::optional<PayloadReader> payload;
    return readFile(source, zmiPictureKind, header, payload, windowSize) &&
           decode(*payload, image, keep, takePixels);
}

} // namespace vantrel
