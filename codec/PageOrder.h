// The rearrangement of 1-bit rows into pages of eight rows.
#pragma once

#include "codec/ByteBuffer.h"

#include <cstdint>

namespace vantrel {

// Takes height rows of (width + 7) / 8 bytes, most significant bit leftmost. Gives (height + 7) / 8 bands of
// width bytes: byte (y / 8) * width + x holds column x of eight rows, bit y % 8 being row y; rows beyond the
// height are 0. Throws std::out_of_range when rowBits is shorter than that.
ByteBuffer toPageOrder(const ByteBuffer& rowBits, std::uint16_t width, std::uint16_t height);

// Makes one such band, a page of width bytes, out of one to eight rows.
void BandToPageOrder(const std::uint8_t* rows, unsigned rowCount, std::uint16_t width, std::uint8_t* page);

} // namespace vantrel
