// Chooses the colours of an 8-bit picture.
#pragma once

#include "tools/picture/PaletteSearch.h"
#include "tools/picture/Rgb565.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace vantrel::tools {

// Sees all pixels of all frames once, then chooses the table: the pixels' own colours if they fit, else those
// with the least total error. Not WIC's palette, which is coarser and differs between Wine and Windows.
class PaletteBuilder {
public:
    explicit PaletteBuilder(std::optional<Color> key) : key_(key), seen_(65536) {}

    // Opaque pixels; those of exactly the key's colour are ignored.
    void Add(std::span<const Color> pixels);

    // True when each pixel's 16-bit colour has its own entry in the table.
    bool IsExact() const { return Distinct() <= Room(); }
    PaletteSearch Build() const;

private:
    // The pixels of one 16-bit colour: how many, and the sums of their 8-bit channels.
    struct Seen {
        std::uint64_t count = 0;
        std::uint64_t blue = 0;
        std::uint64_t green = 0;
        std::uint64_t red = 0;
    };

    std::size_t Room() const { return paletteEntries - (key_ ? 1U : 0U); }
    std::size_t Distinct() const;
    std::vector<std::uint16_t> Choose() const;

    std::optional<Color> key_;
    std::vector<Seen> seen_; // by 16-bit colour
};

} // namespace vantrel::tools
