#include "codec/FramePixels.h"

#include "codec/DecodedImage.h"
#include "codec/PageOrder.h"

#include <algorithm>
#include <utility>

namespace vantrel {

FramePixels::FramePixels(PayloadReader& payload, const ImageHeader& header, const FrameRecord& frame)
    : payload_(payload), mode_(ModeOf(header.flags)), width_(frame.width), height_(frame.height),
      isBlank_(header.pixelOffset == 0), position_(payload.PixelPosition(frame.frameDataOffset)) {
    if (mode_ == PixelMode::Monochrome)
        page_.resize(width_, std::uint8_t{0});
}

std::uint64_t FramePixels::Size() const {
    return DecodedByteCount(mode_, width_, height_);
}

const std::uint8_t* FramePixels::Next(std::uint32_t count) {
    return mode_ == PixelMode::Monochrome ? NextPage()
                                          : payload_.View(std::exchange(position_, position_ + count), count);
}

const std::uint8_t* FramePixels::NextPage() {
    if (isBlank_)
        return page_.data();
    const auto rowCount = static_cast<std::uint16_t>(std::min(8u, height_ - row_));
    const std::uint32_t count = rowCount * RowBytes(mode_, width_);
    const std::uint8_t* const rows = payload_.View(position_, count);
    if (!rows)
        return nullptr;
    toPageOrder(rows, width_, rowCount, page_.data());
    row_ += rowCount;
    position_ += count;
    return page_.data();
}

} // namespace vantrel
