// How the rows and columns of a stored picture map to the picture as displayed.
#pragma once

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

} // namespace vantrel::tools
