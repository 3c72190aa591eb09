#include "tools/picture/Rgb565.h"

#include "codec/PixelConversion.h"

#include <array>
#include <bit>
#include <cstddef>
#include <utility>

namespace vantrel::tools {

namespace {

// For each of the 256 values of a channel, which starts at this bit, the level that is displayed closest to
// it.
constexpr std::array<std::uint8_t, 256> MakeNearest(unsigned levels, unsigned firstBit) {
    const auto shown = [&](unsigned level) {
        return static_cast<int>(ExpandRgb565(static_cast<std::uint16_t>(level << firstBit)) >>
                                (firstBit == 0 ? 0 : 8));
    };
    std::array<std::uint8_t, 256> nearest{};
    unsigned level = 0;
    for (int value = 0; value < 256; ++value) {
        if (level + 1 < levels && shown(level + 1) - value < value - shown(level))
            ++level;
        nearest[static_cast<std::size_t>(value)] = static_cast<std::uint8_t>(level);
    }
    return nearest;
}

constexpr auto nearest5 = MakeNearest(32, 0);
constexpr auto nearest6 = MakeNearest(64, 5);

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
    return std::bit_cast<Color>(0xFF000000 | ExpandRgb565(value));
}

int Distance(Color a, Color b) {
    const int red = a.red - b.red;
    const int green = a.green - b.green;
    const int blue = a.blue - b.blue;
    return red * red + green * green + blue * blue;
}

} // namespace vantrel::tools
