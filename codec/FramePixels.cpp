#include "codec/FramePixels.h"

#include "codec/PageOrder.h"

#include <algorithm>

namespace vantrel {

const std::uint8_t* HeldFramePixels::Next(std::uint32_t count) {
    const std::uint8_t* const bytes = bytes_.data() + position_;
    position_ += count;
    return bytes;
}

FileFramePixels::FileFramePixels(PayloadReader& payload, const DecodedImage& image, std::size_t frameIndex)
    : payload_(payload), mode_(ModeOf(image.header.flags)), width_(ElementAt(image.frames, frameIndex).width),
      height_(image.frames[frameIndex].height), isBlank_(image.header.pixelOffset == 0),
      position_(payload.PixelPosition(image.frames[frameIndex].frameDataOffset)) {
    if (mode_ == PixelMode::Monochrome)
        band_.resize(width_, std::uint8_t{0});
}

const std::uint8_t* FileFramePixels::Next(std::uint32_t count) {
    return mode_ == PixelMode::Monochrome ? NextBand() : View(count);
}

const std::uint8_t* FileFramePixels::View(std::uint32_t count) {
    const std::uint8_t* const bytes = payload_.View(position_, count);
    position_ += count;
    return bytes;
}

const std::uint8_t* FileFramePixels::NextBand() {
    if (isBlank_)
        return band_.data();
    const unsigned rowCount = std::min(8u, height_ - row_);
    const std::uint8_t* const rows = View(rowCount * ((width_ + 7u) / 8u));
    if (!rows)
        return nullptr;
    BandToPageOrder(rows, rowCount, width_, band_.data());
    row_ += rowCount;
    return band_.data();
}

} // namespace vantrel
