#include "tools/picture/PaletteSearch.h"

#include <algorithm>
#include <limits>

namespace vantrel::tools {

PaletteSearch::PaletteSearch(std::span<const std::uint16_t> colors, std::optional<std::uint16_t> key)
    : key_(paletteEntries), nearest_(65536, unknown) {
    std::vector<std::uint16_t> sorted(colors.begin(), colors.end());
    std::ranges::sort(sorted);
    if (key) {
        const auto place = std::ranges::lower_bound(sorted, *key);
        key_ = static_cast<std::size_t>(place - sorted.begin());
        sorted.insert(place, *key);
    }
    used_ = std::min(sorted.size(), paletteEntries);
    std::copy_n(sorted.begin(), used_, entries_.colors);
}

std::uint8_t PaletteSearch::NearestIndex(std::uint16_t rgb565) {
    std::uint16_t& known = nearest_[rgb565];
    if (known == unknown) {
        int best = std::numeric_limits<int>::max();
        for (std::size_t i = 0; i < used_; ++i) {
            const int distance = Distance(FromRgb565(rgb565), FromRgb565(entries_.colors[i]));
            if (distance < best && i != key_) {
                best = distance;
                known = static_cast<std::uint16_t>(i);
            }
        }
    }
    return static_cast<std::uint8_t>(known);
}

} // namespace vantrel::tools
