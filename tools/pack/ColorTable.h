// The 256 colours that the frames of an 8-bit picture share.
#pragma once

#include "tools/pack/PictureReader.h"
#include "tools/pack/Rgb565.h"
#include "tools/pack/ZmiFormat.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace vantrel::tools {

// A colour table ready for use: 16-bit colours and the way from a colour to its nearest entry.
class ColorTable {
public:
    // At most 256 colours, at least one.
    explicit ColorTable(std::span<const std::uint16_t> colors);

    // All 256 entries as the file has them; those beyond the colours given are 0.
    const std::array<std::uint16_t, zmi::colorTableEntries>& Entries() const { return entries_; }
    std::uint8_t NearestIndex(std::uint16_t rgb565);

private:
    static constexpr std::uint16_t unknown = 0xFFFF;

    std::array<std::uint16_t, zmi::colorTableEntries> entries_{};
    std::size_t used_;
    std::vector<std::uint16_t> nearest_; // by 16-bit colour; unknown until asked for
};

// Sees all pixels of all frames once, then chooses the table: their own colours when they fit, else WIC's
// choice.
class ColorTableBuilder {
public:
    // The total number of pixels decides how densely WIC's sample is taken. A reserved colour is always in
    // the table.
    ColorTableBuilder(std::uint64_t totalPixels, std::optional<Color> reserved);

    // Opaque pixels; alpha is not looked at.
    void Add(std::span<const Color> pixels);

    // True when each pixel's 16-bit colour has an entry of its own in the table.
    bool IsExact() const { return distinct_.count() <= zmi::colorTableEntries; }
    // Throws Failure.
    ColorTable Build(IWICImagingFactory& factory) const;

private:
    std::bitset<65536> distinct_;
    std::optional<std::uint16_t> reserved_;
    std::uint64_t step_;
    std::uint64_t untilSample_ = 0;
    std::vector<Color> sample_;
};

} // namespace vantrel::tools
