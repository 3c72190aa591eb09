// What must hold for any bytes that are offered as a ZMI file.
#pragma once

#include "tests/builder/ZmiBuilder.h"

namespace vantrel::tests {

// Reads, decodes and paints the bytes in every way there is. Says what does not hold and aborts.
void CheckInput(const Bytes& file);

} // namespace vantrel::tests
