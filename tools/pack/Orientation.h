// How the rows and columns of a stored picture stand to the picture that one sees.
#pragma once

#include <filesystem>

namespace vantrel::tools {

// The stored pixel is mirrored first, then rows and columns change places.
struct Orientation {
    bool mirroredX = false;
    bool mirroredY = false;
    bool transposed = false;

    bool operator==(const Orientation&) const = default;
};

// EXIF's numbers 1 to 8; any other number is 1, upright.
Orientation OrientationFromExif(unsigned number);

// What the EXIF block of a JPEG file says; 1 when there is none or it makes no sense. Read here, byte by
// byte, because Wine's JPEG decoder has no metadata, so that both systems see the same.
unsigned ReadJpegOrientation(const std::filesystem::path& file);

} // namespace vantrel::tools
