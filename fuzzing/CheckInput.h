// What must hold for any bytes presented as a ZMI file.
#pragma once

#include "tests/builder/ZmiBuilder.h"

namespace vantrel::tests {

// Limits on the cost of one input. With small inputs the window moves only if it is small, too.
struct Limits {
    std::uint32_t window;     // bytes
    std::size_t pixels;       // of the largest picture that is converted
    std::uint64_t pixelBytes; // of all frames; beyond this they are not kept
};
inline constexpr Limits largeInputs{64 * 1024, 0x1000000, 0x4000000};
inline constexpr Limits smallInputs{48, 0x10000, 0x40000};

// Reads, decodes and converts the bytes in every possible way. On a violation prints it and aborts.
void CheckInput(const Bytes& file, const Limits& limits);

} // namespace vantrel::tests
