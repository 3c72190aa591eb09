// The rearrangement of 1-bit rows into pages of eight rows.
#pragma once

#include <cstdint>

namespace vantrel {

// Takes height rows of (width + 7) / 8 bytes, most significant bit leftmost. Gives (height + 7) / 8 pages of
// width bytes: byte (y / 8) * width + x holds column x of eight rows, bit y % 8 being row y; rows beyond the
// height are 0. The two must not overlap.
void toPageOrder(const std::uint8_t* rowBits, std::uint16_t width, std::uint16_t height, std::uint8_t* pages);

} // namespace vantrel
