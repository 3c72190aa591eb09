// The 256 colours that the frames of an 8-bit picture share.
#pragma once

#include "codec/ZmiFormat.h"
#include "tools/picture/Rgb565.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

namespace vantrel::tools {

inline constexpr std::size_t paletteEntries = std::extent_v<decltype(Palette::colors)>;

// A colour table with a search for the entry nearest to a colour.
class PaletteSearch {
public:
    // At most 256 colours, or 255 and a key, which gets an entry that no colour maps to.
    PaletteSearch(std::span<const std::uint16_t> colors, std::optional<std::uint16_t> key);

    // All 256 entries as in the file; unused ones are 0.
    const Palette& Entries() const { return entries_; }
    // There must be a colour other than the key.
    std::uint8_t NearestIndex(std::uint16_t rgb565);
    std::uint8_t KeyIndex() const { return static_cast<std::uint8_t>(key_); }

private:
    static constexpr std::uint16_t unknown = 0xFFFF;

    Palette entries_{};
    std::size_t used_;
    std::size_t key_;                    // its index; the number of entries if there is no key
    std::vector<std::uint16_t> nearest_; // by 16-bit colour; computed on demand
};

} // namespace vantrel::tools
