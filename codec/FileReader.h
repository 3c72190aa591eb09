// The reading algorithm of ZMI files: header, trailer, then access to the payload.
#pragma once

#include "codec/PayloadReader.h"
#include "codec/ZmiFormat.h"

#include <optional>

namespace vantrel {

// Validates a file's header and trailer and opens its payload. `header` receives what stood in the header's
// place in every case (zeros when nothing could be read), `payload` a reader on success and nothing
// otherwise.
bool readFile(FileWindow& file, std::uint8_t expectedKind, FileHeader& header,
              std::optional<PayloadReader>& payload);

} // namespace vantrel
