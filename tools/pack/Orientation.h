// How the rows and columns of a stored picture map to the picture as displayed.
#pragma once

#include <filesystem>

namespace vantrel::tools {

// The stored picture is mirrored first, then rows and columns are swapped.
struct Orientation {
    bool mirroredX = false;
    bool mirroredY = false;
    bool transposed = false;

    bool operator==(const Orientation&) const = default;
};

// EXIF's numbers 1 to 8; any other number is 1, upright.
Orientation OrientationFromExif(unsigned number);

// The orientation from the EXIF block of a JPEG file; 1 if there is none or it is invalid. Parsed here, since
// Wine's JPEG decoder has no metadata and both systems are to see the same.
unsigned ReadJpegOrientation(const std::filesystem::path& file);

} // namespace vantrel::tools
