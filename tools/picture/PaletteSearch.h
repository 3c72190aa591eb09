// The 256 colours that the frames of an 8-bit picture share.
#pragma once

#include "codec/ZmiFormat.h"
#include "tools/picture/Rgb565.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

namespace vantrel::tools {

inline constexpr std::size_t paletteEntries = std::extent_v<decltype(Palette::colors)>;

// A palette with a search for the entry nearest to a colour.
class PaletteSearch {
public:
    // At most 256 different colours together with the keys: transparent colours with an entry of their own,
    // which no opaque colour maps to. If all frames share one key, it is the only one.
    PaletteSearch(std::span<const std::uint16_t> colors, std::span<const std::uint16_t> keys, bool sharesKey);

    // All 256 entries as in the file; unused ones are 0.
    const Palette& Entries() const { return entries_; }
    // There must be a colour that is not a key.
    std::uint8_t NearestIndex(std::uint16_t rgb565);
    // The entry for transparent pixels in a frame whose transparent colour this is.
    std::uint8_t KeyIndex(std::uint16_t rgb565) const;

private:
    static constexpr std::uint16_t unknown = 0xFFFF;

    Palette entries_{};
    std::size_t used_;
    std::bitset<paletteEntries> isKey_;
    std::optional<std::uint16_t> sharedKey_;
    std::vector<std::uint16_t> nearest_; // by 16-bit colour; computed on demand
};

} // namespace vantrel::tools
