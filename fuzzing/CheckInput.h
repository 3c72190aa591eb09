// What must hold for any bytes that are offered as a ZMI file.
#pragma once

#include "tests/builder/ZmiBuilder.h"

namespace vantrel::tests {

// What one input may cost. Small inputs meet a window that moves only when it is small, too.
struct Limits {
    std::uint32_t window;     // bytes
    std::size_t pixels;       // of the largest picture that is converted
    std::uint64_t pixelBytes; // of all frames, beyond which they are not kept
};
inline constexpr Limits largeInputs{64 * 1024, 0x1000000, 0x4000000};
inline constexpr Limits smallInputs{48, 0x10000, 0x40000};

// Reads, decodes and converts the bytes in every way there is. Says what does not hold and aborts.
void CheckInput(const Bytes& file, const Limits& limits);

} // namespace vantrel::tests
