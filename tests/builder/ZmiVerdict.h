// A second opinion on whether bytes are a ZMI file that loads, written from the format, independently of the
// decoder.
#pragma once

#include "tests/builder/ZmiBuilder.h"

namespace vantrel::tests {

enum class Verdict {
    Loads,
    Fails,
    Throws, // a mode-0 file without a first frame
};

Verdict Judge(const Bytes& file);

} // namespace vantrel::tests
