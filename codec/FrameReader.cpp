#include "codec/FrameReader.h"

#include "codec/DecodedImage.h"
#include "codec/FrameConverter.h"
#include "codec/FramePixels.h"
#include "codec/PixelConversion.h"
#include "codec/ReadFile.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

namespace vantrel {

namespace {

// What identifies a frame's transparent pixels after conversion.
struct TransparentColor {
    std::uint32_t converted; // no other pixel has this value
    std::uint32_t shown;
};

// In indexed mode the key is a palette entry, which gets its own colour. In 16-bit mode it is a colour, and
// no two of them look the same. The 1-bit mode has no key.
std::optional<TransparentColor> MarkTransparent(const FrameRecord& frame, Palette& palette) {
    const std::uint32_t key = frame.transparentKey;
    const PixelMode mode = ModeOf(frame.flags);
    if ((frame.flags & transparencyFlag) == 0)
        return std::nullopt;
    if (mode == PixelMode::Rgb565 && key <= 0xFFFF) {
        const std::uint32_t color = ExpandRgb565(static_cast<std::uint16_t>(key));
        return TransparentColor{color, color};
    }
    if (mode != PixelMode::Indexed || key >= std::size(palette.colors))
        return std::nullopt;
    std::uint16_t unused = 0;
    while (std::find(std::begin(palette.colors), std::end(palette.colors), unused) !=
           std::end(palette.colors))
        ++unused;
    const std::uint16_t shown = palette.colors[key];
    palette.colors[key] = unused;
    return TransparentColor{ExpandRgb565(unused), ExpandRgb565(shown)};
}

} // namespace

FrameReader::FrameReader(ByteSource& source) : source_(source), fault_(ReadHeaders()) {}

FileFault FrameReader::ReadHeaders() {
    if (!readFile(source_, zmiPictureKind, file_, payload_))
        return FileFault::FileHeader;
    if (!payload_->Read(0, &image_, sizeof image_))
        return FileFault::ImageHeader;
    if (image_.pixelOffset == 0) {
        image_.flags = blankDefaultFlag;
        image_.width = blankDefaultWidth;
        image_.height = blankDefaultHeight;
    }
    table_.frameCount = 1;
    if ((image_.flags & frameTableFlag) == 0)
        return FileFault::None;
    if (!payload_->Read(payload_->TablePosition(image_.pixelOffset), &table_, sizeof table_))
        return FileFault::FrameTable;
    if (!payload_->Contains(payload_->PixelPosition(image_.pixelOffset + std::uint32_t{sizeof table_}),
                            table_.frameCount * sizeof(FrameRecord)))
        return FileFault::FrameRecords;
    return table_.frameCount == 0 ? FileFault::NoFrame : FileFault::None;
}

std::optional<FileFrame> FrameReader::Frame(std::uint16_t index) {
    FileFrame frame{};
    if ((image_.flags & frameTableFlag) == 0) {
        frame.record = SingleFrame(image_);
        frame.record.paletteNumber = image_.paletteOffset;
    } else {
        const std::int64_t records =
            payload_->PixelPosition(image_.pixelOffset + std::uint32_t{sizeof table_});
        const std::uint8_t* const bytes = payload_->View(
            records + std::int64_t{index} * std::int64_t{sizeof(FrameRecord)}, sizeof(FrameRecord));
        if (!bytes)
            return std::nullopt;
        std::memcpy(&frame.record, bytes, sizeof frame.record);
    }
    const PixelMode mode = ModeOf(image_.flags);
    if (mode == PixelMode::Indexed)
        frame.paletteOffset = index == 0 ? image_.paletteOffset : frame.record.paletteNumber;
    if (image_.pixelOffset != 0)
        frame.pixelByteCount = PixelByteCount(mode, frame.record.width, frame.record.height);
    frame.fault = FaultOf(frame);
    return frame;
}

FrameFault FrameReader::FaultOf(const FileFrame& frame) const {
    if (image_.pixelOffset == 0)
        return FrameFault::None;
    const FrameRecord& record = frame.record;
    const PixelMode fileMode = ModeOf(image_.flags);
    const PixelMode mode = ModeOf(record.flags);
    if (fileMode == PixelMode::Indexed &&
        !payload_->Contains(payload_->TablePosition(frame.paletteOffset), sizeof(Palette)))
        return FrameFault::Palette;
    if (!payload_->Contains(payload_->PixelPosition(record.frameDataOffset), frame.pixelByteCount))
        return FrameFault::Pixels;
    if (mode == PixelMode::Reserved)
        return FrameFault::ReservedMode;
    if (mode == PixelMode::Indexed && fileMode != PixelMode::Indexed)
        return FrameFault::NoPalette;
    if (DecodedByteCount(mode, record.width, record.height) >
        DecodedByteCount(fileMode, record.width, record.height))
        return FrameFault::TooFewPixels;
    return record.width == 0 || record.height == 0 ? FrameFault::Empty : FrameFault::None;
}

bool FrameReader::Convert(const FileFrame& frame, const RowTaker& takeRow) {
    // At most the frame's own length, since there may be many small frames.
    const std::uint64_t most = PayloadReader::standardWindow;
    PayloadReader payload(source_, file_.dataOffset, file_.dataSize,
                          static_cast<std::uint32_t>(std::min(frame.pixelByteCount, most)));
    Palette palette{};
    if (ModeOf(frame.record.flags) == PixelMode::Indexed &&
        !payload.Read(payload.TablePosition(frame.paletteOffset), &palette, sizeof palette))
        return false;
    const auto transparent = MarkTransparent(frame.record, palette);

    FramePixels pixels(payload, image_, frame.record);
    FrameConverter converter(frame.record, &palette, pixels);
    std::vector<std::uint32_t> words(converter.Width());
    for (unsigned y = 0; y < converter.Height(); ++y) {
        if (!converter.ConvertRow(words.data()))
            return false;
        for (std::uint32_t& word : words)
            word = transparent && word == transparent->converted ? transparent->shown : 0xFF000000 | word;
        takeRow(words.data());
    }
    return true;
}

} // namespace vantrel
