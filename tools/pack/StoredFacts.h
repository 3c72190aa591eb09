// What picture files say about themselves and WIC does not pass on.
#pragma once

#include <filesystem>
#include <vector>

namespace vantrel::tools {

// How the stored picture becomes the one displayed: mirrored first, then rows and columns are swapped.
struct Orientation {
    bool mirroredX = false;
    bool mirroredY = false;
    bool transposed = false;

    bool operator==(const Orientation&) const = default;
};

// The orientation of a JPEG file or of the pages of a TIFF file; fewer than this count if there are no more.
// Wine's JPEG decoder has no metadata, and its TIFF decoder crashes on broken ones.
std::vector<Orientation> ReadOrientations(const std::filesystem::path& file, unsigned count);

// The index of the largest of this many pictures in an .ico file; of equals, the first with the most colours.
unsigned FindLargestIcon(const std::filesystem::path& file, unsigned count);

// Whether an animated PNG or a TIFF file has more than this many frames.
bool HasMoreFrames(const std::filesystem::path& file, unsigned count);

} // namespace vantrel::tools
