#include "codec/FileFramePixels.h"

#include "codec/DecodedImage.h"
#include "codec/PageOrder.h"

#include <algorithm>

namespace vantrel {

FileFramePixels::FileFramePixels(PayloadReader& payload, const ImageHeader& header, const FrameRecord& frame)
    : payload_(payload), mode_(ModeOf(header.flags)), width_(frame.width), height_(frame.height),
      isBlank_(header.pixelOffset == 0), position_(payload.PixelPosition(frame.frameDataOffset)) {
    if (mode_ == PixelMode::Monochrome)
        page_.resize(width_, std::uint8_t{0});
}

std::uint64_t FileFramePixels::Size() const {
    return DecodedByteCount(mode_, width_, height_);
}

const std::uint8_t* FileFramePixels::Next(std::uint32_t count) {
    return mode_ == PixelMode::Monochrome ? NextPage() : View(count);
}

const std::uint8_t* FileFramePixels::View(std::uint32_t count) {
    const std::uint8_t* const bytes = payload_.View(position_, count);
    position_ += count;
    return bytes;
}

const std::uint8_t* FileFramePixels::NextPage() {
    if (isBlank_)
        return page_.data();
    const auto rowCount = static_cast<std::uint16_t>(std::min(8u, height_ - row_));
    const std::uint8_t* const rows = View(rowCount * RowBytes(mode_, width_));
    if (!rows)
        return nullptr;
    toPageOrder(rows, width_, rowCount, page_.data());
    row_ += rowCount;
    return page_.data();
}

} // namespace vantrel
