#include "tools/picture/PaletteSearch.h"

#include <algorithm>
#include <limits>

namespace vantrel::tools {

PaletteSearch::PaletteSearch(std::span<const std::uint16_t> colors, std::span<const std::uint16_t> keys,
                             bool sharesKey)
    : nearest_(65536, unknown) {
    std::vector<std::uint16_t> sorted(colors.begin(), colors.end());
    std::ranges::sort(sorted);
    for (const std::uint16_t key : keys)
        sorted.insert(std::ranges::lower_bound(sorted, key), key);
    used_ = std::min(sorted.size(), paletteEntries);
    std::copy_n(sorted.begin(), used_, entries_.colors);
    for (const std::uint16_t key : keys)
        isKey_.set(KeyIndex(key));
    if (sharesKey && !keys.empty())
        sharedKey_ = keys.front();
}

std::uint8_t PaletteSearch::NearestIndex(std::uint16_t rgb565) {
    std::uint16_t& known = nearest_[rgb565];
    if (known == unknown) {
        int best = std::numeric_limits<int>::max();
        for (std::size_t i = 0; i < used_; ++i) {
            const int distance = Distance(FromRgb565(rgb565), FromRgb565(entries_.colors[i]));
            if (distance < best && !isKey_[i]) {
                best = distance;
                known = static_cast<std::uint16_t>(i);
            }
        }
    }
    return static_cast<std::uint8_t>(known);
}

std::uint8_t PaletteSearch::KeyIndex(std::uint16_t rgb565) const {
    const auto used = std::span(entries_.colors).first(used_);
    // Of two entries with this colour, the first is the key.
    return static_cast<std::uint8_t>(std::ranges::lower_bound(used, sharedKey_.value_or(rgb565)) -
                                     used.begin());
}

} // namespace vantrel::tools
