// Opening a ZMI file: its header and trailer.
#pragma once

#include "codec/ByteSource.h"
#include "codec/PayloadReader.h"

#include <cstdint>
#include <optional>

namespace vantrel {

// Validates a file's header and trailer and opens its payload. `header` receives the first 112 bytes if they
// can be read, and zeros otherwise; `payload` a reader on success and nothing otherwise. The gap between
// header and payload is not read.
bool readFile(ByteSource& source, std::uint8_t expectedKind, FileHeader& header,
              std::optional<PayloadReader>& payload,
              std::uint32_t windowSize = PayloadReader::standardWindow);

} // namespace vantrel
