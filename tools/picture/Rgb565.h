// Colours: as WIC delivers them, and as the ZMI format stores them in 16 bits.
#pragma once

#include <cstdint>

namespace vantrel::tools {

// One pixel of WIC's 32bppBGRA.
struct Color {
    std::uint8_t blue;
    std::uint8_t green;
    std::uint8_t red;
    std::uint8_t alpha;

    bool operator==(const Color&) const = default;
};
static_assert(sizeof(Color) == 4);

// The 16-bit colour that is displayed closest to the given one; alpha is ignored.
std::uint16_t ToRgb565(Color color);
// The same, but never the excluded colour.
std::uint16_t ToRgb565Except(Color color, std::uint16_t forbidden);
// The colour as displayed, opaque: the highest level of a channel becomes 255, any other is shifted left.
Color FromRgb565(std::uint16_t value);

// The squared distance of two colours, with channels weighted roughly as the eye does.
int Distance(Color a, Color b);

} // namespace vantrel::tools
