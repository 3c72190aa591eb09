#include "codec/windows/Load.h"

#include "codec/windows/FileSource.h"
#include "codec/windows/StreamSource.h"

namespace vantrel {

bool load(const wchar_t* path, IStream* stream, DecodedImage& image, const PixelTaker& takePixels) {
    if (stream) {
        StreamSource source(*stream);
        return DecodeFile(source, image, Keep::Facts, takePixels);
    }
    if (!path)
        return false;
    FileSource source(path);
    return DecodeFile(source, image, Keep::Facts, takePixels);
}

} // namespace vantrel
