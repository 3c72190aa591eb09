#include "codec/Load.h"

#include "codec/FileReader.h"
#include "codec/FileSource.h"
#include "codec/StreamSource.h"

namespace vantrel {

namespace {

bool LoadFrom(ByteSource&& source, DecodedImage& image, std::uint32_t framesWanted) {
    FileHeader header;
    std::optional<PayloadReader> payload;
    return readFile(source, zmiPictureKind, header, payload) && decode(*payload, image, framesWanted);
}

} // namespace

bool load(const wchar_t* path, IStream* stream, DecodedImage& image, std::uint32_t framesWanted) {
    if (stream)
        return LoadFrom(StreamSource(*stream), image, framesWanted);
    return path && LoadFrom(FileSource(path), image, framesWanted);
}

} // namespace vantrel
