#include "tools/picture/Rgb565.h"

#include <array>
#include <cstddef>
#include <utility>

namespace vantrel::tools {

namespace {

template <unsigned bits>
constexpr std::uint8_t Expand(unsigned level) {
    constexpr unsigned highest = (1U << bits) - 1;
    return static_cast<std::uint8_t>(level == highest ? 255U : level << (8 - bits));
}

// For each of the 256 values of a channel, the level that is displayed closest to it.
template <unsigned bits>
constexpr std::array<std::uint8_t, 256> MakeNearest() {
    std::array<std::uint8_t, 256> nearest{};
    unsigned level = 0;
    for (unsigned value = 0; value < nearest.size(); ++value) {
        if (level + 1 < (1U << bits) && Expand<bits>(level + 1) - value < value - Expand<bits>(level) &&
            value > Expand<bits>(level))
            ++level;
        nearest[value] = static_cast<std::uint8_t>(level);
    }
    return nearest;
}

constexpr auto nearest5 = MakeNearest<5>();
constexpr auto nearest6 = MakeNearest<6>();

static_assert(nearest5[4] == 0 && nearest5[5] == 1 && nearest5[247] == 30 && nearest5[248] == 31);
static_assert(nearest6[250] == 62 && nearest6[252] == 63 && nearest6[255] == 63);

} // namespace

std::uint16_t ToRgb565(Color color) {
    return static_cast<std::uint16_t>(nearest5[color.red] << 11 | nearest6[color.green] << 5 |
                                      nearest5[color.blue]);
}

std::uint16_t ToRgb565Except(Color color, std::uint16_t forbidden) {
    const std::uint16_t nearest = ToRgb565(color);
    if (nearest != forbidden)
        return nearest;
    // The next best differs by one level in one channel.
    std::uint16_t best = forbidden;
    for (const auto& [shift, levels] : {std::pair(0, 32), {5, 64}, {11, 32}})
        for (const int step : {-1, 1}) {
            const int level = (forbidden >> shift & (levels - 1)) + step;
            const auto other = static_cast<std::uint16_t>(forbidden + step * (1 << shift));
            if (level >= 0 && level < levels &&
                (best == forbidden || Distance(color, FromRgb565(other)) < Distance(color, FromRgb565(best))))
                best = other;
        }
    return best;
}

Color FromRgb565(std::uint16_t value) {
    return {.blue = Expand<5>(value & 31U),
            .green = Expand<6>(value >> 5 & 63U),
            .red = Expand<5>(value >> 11 & 31U),
            .alpha = 255};
}

int Distance(Color a, Color b) {
    const int red = a.red - b.red;
    const int green = a.green - b.green;
    const int blue = a.blue - b.blue;
    return 3 * red * red + 6 * green * green + blue * blue;
}

} // namespace vantrel::tools
