#include "codec/FrameReader.h"

#include "codec/DecodedImage.h"
#include "codec/FrameConverter.h"
#include "codec/FramePixels.h"
#include "codec/PixelConversion.h"

#include <algorithm>
#include <cstring>

namespace vantrel {

FrameReader::FrameReader(PayloadReader& payload) : payload_(payload), fault_(ReadHeaders()) {}

FileFault FrameReader::ReadHeaders() {
    if (!payload_.Read(0, &image_, sizeof image_))
        return FileFault::ImageHeader;
    table_.frameCount = 1;
    if (image_.pixelOffset == 0) {
        image_.flags = blankDefaultFlag;
        image_.width = blankDefaultWidth;
        image_.height = blankDefaultHeight;
    }
    if (ModeOf(image_.flags) == PixelMode::Indexed &&
        !payload_.Read(payload_.TablePosition(image_.paletteOffset), &firstPalette_.emplace(),
                       sizeof(Palette)))
        firstPalette_.reset();
    if (!HasFrameTable())
        return FileFault::None;
    if (!payload_.Read(payload_.TablePosition(image_.pixelOffset), &table_, sizeof table_))
        return FileFault::FrameTable;
    if (!payload_.Contains(RecordPosition(0), table_.frameCount * sizeof(FrameRecord)))
        return FileFault::FrameRecords;
    return table_.frameCount == 0 ? FileFault::NoFrame : FileFault::None;
}

bool FrameReader::ReadRecords(std::vector<FrameRecord>& records) {
    if (fault_ != FileFault::None && fault_ != FileFault::NoFrame)
        return false;
    records.resize(table_.frameCount);
    if (!HasFrameTable())
        records[0] = SingleFrame(image_);
    else if (!payload_.Read(RecordPosition(0), records.data(), records.size() * sizeof(FrameRecord)))
        return false;
    for (std::size_t i = 0; i < records.size(); ++i)
        if (FindOutside(records[i], PaletteOffset(i, records[i])) != FrameFault::None)
            return false;
    return true;
}

std::optional<FileFrame> FrameReader::Frame(std::uint16_t index) {
    FrameRecord record = SingleFrame(image_);
    if (HasFrameTable()) {
        const std::uint8_t* const bytes = payload_.View(RecordPosition(index), sizeof record);
        if (!bytes)
            return std::nullopt;
        std::memcpy(&record, bytes, sizeof record);
    }
    FileFrame frame{record, PaletteOffset(index, record), BytesOf(record), FrameFault::None};
    frame.fault = FaultOf(frame);
    return frame;
}

std::int64_t FrameReader::RecordPosition(std::uint16_t index) const {
    return payload_.PixelPosition(image_.pixelOffset + std::uint32_t{sizeof table_}) +
           std::int64_t{index} * std::int64_t{sizeof(FrameRecord)};
}

std::uint32_t FrameReader::PaletteOffset(std::size_t index, const FrameRecord& record) const {
    if (ModeOf(image_.flags) != PixelMode::Indexed)
        return 0;
    // Where an offset of 0 is in the payload, which then ends beyond 4 GiB, it still means no palettes.
    return index == 0 || image_.paletteOffset == 0 ? image_.paletteOffset : record.paletteNumber;
}

std::uint64_t FrameReader::BytesOf(const FrameRecord& record) const {
    return image_.pixelOffset == 0 ? 0 : PixelByteCount(ModeOf(image_.flags), record.width, record.height);
}

FrameFault FrameReader::FindOutside(const FrameRecord& record, std::uint32_t paletteOffset) const {
    if (image_.pixelOffset == 0)
        return FrameFault::None;
    if (ModeOf(image_.flags) == PixelMode::Indexed &&
        !payload_.Contains(payload_.TablePosition(paletteOffset), sizeof(Palette)))
        return FrameFault::Palette;
    return payload_.Contains(payload_.PixelPosition(record.frameDataOffset), BytesOf(record))
               ? FrameFault::None
               : FrameFault::Pixels;
}

FrameFault FrameReader::FaultOf(const FileFrame& frame) const {
    const FrameRecord& record = frame.record;
    const PixelMode fileMode = ModeOf(image_.flags);
    const PixelMode mode = ModeOf(record.flags);
    if (const FrameFault outside = FindOutside(record, frame.paletteOffset); outside != FrameFault::None)
        return outside;
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
    PayloadReader payload(payload_, static_cast<std::uint32_t>(std::min(frame.pixelByteCount, most)));
    constexpr std::uint32_t opaque = 0xFF000000;
    const PixelMode mode = ModeOf(frame.record.flags);
    const std::optional<std::uint32_t> key = TransparentKey(frame.record);
    PaletteWords palette{};
    if (mode == PixelMode::Indexed) {
        Palette read;
        if (!payload.Read(payload.TablePosition(frame.paletteOffset), &read, sizeof read))
            return false;
        palette = ExpandPalette(read);
        for (std::uint32_t i = 0; i < palette.size(); ++i)
            palette[i] |= i == key ? 0 : opaque;
    }
    // Conversion makes no two 16-bit colours the same, and none opaque.
    const std::uint32_t transparent =
        key && mode == PixelMode::Rgb565 ? ExpandRgb565(static_cast<std::uint16_t>(*key)) : opaque;

    FramePixels pixels(payload, image_, frame.record);
    FrameConverter converter(frame.record, palette, pixels);
    std::vector<std::uint32_t> words(converter.Width());
    for (unsigned y = 0; y < converter.Height(); ++y) {
        if (!converter.ConvertRow(words.data()))
            return false;
        if (mode != PixelMode::Indexed)
            for (std::uint32_t& word : words)
                word |= word == transparent ? 0 : opaque;
        takeRow(words.data());
    }
    return true;
}

} // namespace vantrel
