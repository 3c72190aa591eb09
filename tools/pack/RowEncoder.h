// Converts a row of colours to the bytes of that row in a ZMI file.
#pragma once

#include "codec/ZmiFormat.h"
#include "tools/picture/PaletteSearch.h"
#include "tools/picture/Rgb565.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace vantrel::tools {

// Makes each pixel opaque, or transparent with alpha 0. With a transparent colour, those that have it and
// those below half opacity become transparent in this colour, and the others keep theirs; without one all are
// blended with white. True if some were not opaque and are now.
bool Flatten(std::span<Color> pixels, std::optional<Color> transparent);

// Takes the rows of each frame in turn, top to bottom, and diffuses each pixel's error to its neighbours
// (Floyd-Steinberg). This last step of the conversion is not left to WIC because Wine's format converter
// supports neither 16bppBGR565 nor BlackWhite and does not dither; this way both systems make the same file.
class RowEncoder {
public:
    // The palette is required in indexed mode and must outlive the encoder; other modes ignore it.
    RowEncoder(PixelMode mode, PaletteSearch* palette, bool dither);

    // The key is the value of transparent pixels.
    void StartFrame(std::uint16_t width, std::optional<std::uint32_t> transparentKey);
    // Pixels in, opaque or with alpha 0; the row's bytes are appended.
    void Encode(std::span<const Color> row, std::vector<std::byte>& bytes);

private:
    using Error = std::array<int, 3>; // blue, green, red, in sixteenths

    std::uint16_t Choose(Color color, Color& shown);

    PixelMode mode_;
    PaletteSearch* palette_;
    bool dither_;
    std::optional<std::uint32_t> transparentKey_;
    std::vector<Error> thisRow_; // one entry more at either end than the row has pixels
    std::vector<Error> nextRow_;
};

} // namespace vantrel::tools
