#include "codec/Load.h"

#include "codec/FileSource.h"
#include "codec/LoadFrom.h"
#include "codec/StreamSource.h"

namespace vantrel {

bool load(const wchar_t* path, IStream* stream, DecodedImage& image, const PixelTaker& takePixels) {
    if (stream) {
        StreamSource source(*stream);
        return LoadFrom(source, image, Keep::Facts, takePixels);
    }
    if (!path)
        return false;
    FileSource source(path);
    return LoadFrom(source, image, Keep::Facts, takePixels);
}

} // namespace vantrel
