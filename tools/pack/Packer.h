// The whole way from the user's pictures to a finished ZMI file.
#pragma once

#include "tools/pack/PackOptions.h"
#include "tools/pack/ZmiWriter.h"

namespace vantrel::tools {

// Packs the inputs, or the blank default picture when there are none, and puts the file in place of an older
// one. Needs COM on this thread. Returns what the file holds. Throws Failure; the output is then as it was.
ZmiContent Pack(const PackOptions& options);

} // namespace vantrel::tools
