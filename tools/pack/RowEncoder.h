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

// Makes pixels opaque: those below half opacity become the transparent colour if there is one, and the others
// keep their colour; without a transparent colour all are blended with white.
void MakeOpaque(std::span<Color> pixels, std::optional<Color> transparent);

// Takes the rows of each frame in turn, top to bottom, and diffuses each pixel's error to its neighbours
// (Floyd-Steinberg). This last step of the conversion is not left to WIC because Wine's format converter
// supports neither 16bppBGR565 nor BlackWhite and does not dither; this way both systems make the same file.
class RowEncoder {
public:
    // The table is required in indexed mode and must outlive the encoder; other modes ignore it.
    RowEncoder(PixelMode mode, PaletteSearch* table, std::optional<Color> transparent, bool dither);

    void StartFrame(std::uint16_t width);
    // Opaque pixels in; the row's bytes are appended.
    void Encode(std::span<const Color> row, std::vector<std::byte>& bytes);

    // The transparent colour in the format's own terms: 16-bit colour or index; 0 when there is none.
    std::uint32_t TransparentKey() const { return transparentKey_; }

private:
    using Error = std::array<int, 3>; // blue, green, red, in sixteenths

    std::uint16_t Choose(Color color, Color& shown);

    PixelMode mode_;
    PaletteSearch* table_;
    std::optional<Color> transparent_;
    std::uint32_t transparentKey_ = 0;
    bool dither_;
    std::vector<Error> thisRow_; // one entry more at either end than the row has pixels
    std::vector<Error> nextRow_;
};

} // namespace vantrel::tools
