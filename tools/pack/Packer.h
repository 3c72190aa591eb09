// The whole process from the user's pictures to a finished ZMI file.
#pragma once

#include "tools/pack/PackOptions.h"
#include "tools/pack/ZmiWriter.h"

namespace vantrel::tools {

// Packs the inputs, or the blank default picture when there are none, and replaces an older file. Needs COM
// on this thread. Returns what the file contains. Throws Failure; the output is then unchanged.
ZmiContent Pack(const PackOptions& options);

} // namespace vantrel::tools
