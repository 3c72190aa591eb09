#include "codec/Load.h"

#include "codec/FileReader.h"
#include "codec/FileSource.h"
#include "codec/StreamSource.h"

namespace vantrel {

namespace {

bool LoadFrom(ByteSource&& source, DecodedImage& image, std::uint32_t framesWanted,
              const PixelTaker& takePixels) {
    FileWindow file(source);
    FileHeader header;
    std::optional<PayloadReader> payload;
    return readFile(file, zmiPictureKind, header, payload) &&
           decode(*payload, image, framesWanted, takePixels);
}

} // namespace

bool load(const wchar_t* path, IStream* stream, DecodedImage& image, std::uint32_t framesWanted,
          const PixelTaker& takePixels) {
    if (stream)
        return LoadFrom(StreamSource(*stream), image, framesWanted, takePixels);
    return path && LoadFrom(FileSource(path), image, framesWanted, takePixels);
}

} // namespace vantrel
