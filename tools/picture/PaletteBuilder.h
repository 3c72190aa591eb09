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
    PaletteBuilder() : seen_(65536) {}

    // The key is the frame's transparent colour, if it has one.
    void StartFrame(std::optional<std::uint16_t> key);
    // Pixels of the frame, either opaque or, with alpha 0, transparent.
    void Add(std::span<const Color> pixels);

    // True when each 16-bit colour has its own entry, and a second one if a frame uses it both for opaque and
    // for transparent pixels. Otherwise all transparent pixels share an entry.
    bool IsExact() const;
    PaletteSearch Build() const;

private:
    // The pixels of one 16-bit colour: how many, and the sums of their 8-bit channels.
    struct Seen {
        std::uint64_t count = 0;
        std::uint64_t blue = 0;
        std::uint64_t green = 0;
        std::uint64_t red = 0;
        bool isKey = false; // of any frame
        bool needsTwoEntries = false;
    };

    std::vector<std::uint16_t> Reduce(std::size_t room) const;

    std::optional<std::uint16_t> key_; // of this frame
    std::vector<Seen> seen_;           // by 16-bit colour
};

} // namespace vantrel::tools
