// Colours: as WIC hands them out, and as the ZMI format keeps them in 16 bits.
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

// The 16-bit colour that is shown nearest to the given one; alpha does not count.
std::uint16_t ToRgb565(Color color);
// The same among all values but one.
std::uint16_t ToRgb565Except(Color color, std::uint16_t forbidden);
// The colour as it is shown, opaque: the highest level of a channel becomes 255, any other is shifted up.
Color FromRgb565(std::uint16_t value);

// How far two colours are apart, squared, with channels weighed by about as much as the eye makes of each.
int Distance(Color a, Color b);

} // namespace vantrel::tools
