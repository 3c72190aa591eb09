// The decoder: payload bytes to DecodedImage.
#pragma once

#include "codec/DecodedImage.h"
#include "codec/PayloadReader.h"

#include <cstdint>
#include <limits>

namespace vantrel {

inline constexpr std::uint32_t allFrames = std::numeric_limits<std::uint32_t>::max();

// Fills an empty image. Of the frames only the first framesWanted get their pixels and colour tables of their
// own; every record is read, every range checked and every byte of the payload read in any case, so that
// whether a file decodes does not depend on framesWanted. False when a range lies outside the payload or the
// source fails; the image then holds anything. Throws std::out_of_range for a mode-0 file whose frame table
// is empty.
bool decode(PayloadReader& payload, DecodedImage& image, std::uint32_t framesWanted = allFrames);

} // namespace vantrel
