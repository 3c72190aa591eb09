// The reading algorithm of ZMI files: header, trailer, then access to the payload.
#pragma once

#include "codec/ByteSource.h"
#include "codec/PayloadReader.h"
#include "codec/ZmiFormat.h"

#include <optional>

namespace vantrel {

// Validates a file's header and trailer and opens its payload. `header` receives the first 112 bytes whenever
// they can be read, and zeros otherwise; `payload` a reader on success and nothing otherwise. Between the
// header and the payload nothing is read.
bool readFile(ByteSource& source, std::uint8_t expectedKind, FileHeader& header,
              std::optional<PayloadReader>& payload,
              std::uint32_t windowSize = PayloadReader::standardWindow);

} // namespace vantrel
