// Reading ZMI files: header, trailer, then the payload and its contents.
#pragma once

#include "codec/ByteSource.h"
#include "codec/Decoder.h"

#include <optional>

namespace vantrel {

// Validates a file's header and trailer and opens its payload. `header` receives the first 112 bytes if they
// can be read, and zeros otherwise; `payload` a reader on success and nothing otherwise. The gap between
// header and payload is not read.
bool readFile(ByteSource& source, std::uint8_t expectedKind, FileHeader& header,
              std::optional<PayloadReader>& payload,
              std::uint32_t windowSize = PayloadReader::standardWindow);

// Reads and decodes a picture into an empty image; see decode for the rest.
bool LoadFrom(ByteSource& source, DecodedImage& image, Keep keep, const PixelTaker& takePixels = {},
              std::uint32_t windowSize = PayloadReader::standardWindow);

} // namespace vantrel
