#include "tools/pack/ZmiWriter.h"

#include "tools/pack/RowEncoder.h"
#include "tools/terminal/Failure.h"

#include <algorithm>
#include <limits>

namespace vantrel::tools {

namespace {

// The file's pieces stand in this order; an absent piece has no length.
struct Layout {
    std::uint64_t frameTable = sizeof(zmi::FileHeader) + sizeof(zmi::ImageHeader);
    std::uint64_t colorTable = frameTable;
    std::uint64_t pixels = frameTable;
    std::uint64_t trailer = frameTable;
};

bool HasFrameTable(const ZmiContent& content) {
    return content.frames.size() > 1;
}

std::uint64_t FrameBytes(zmi::PixelMode mode, FrameSize size) {
    return std::uint64_t{RowBytes(mode, size.width)} * size.height;
}

Layout LayOut(const ZmiContent& content) {
    Layout layout;
    if (HasFrameTable(content))
        layout.colorTable += sizeof(zmi::FrameTable) + content.frames.size() * sizeof(zmi::FrameRecord);
    layout.pixels = layout.colorTable;
    if (content.colorTable)
        layout.pixels += zmi::colorTableEntries * sizeof(std::uint16_t);
    layout.trailer = layout.pixels;
    for (const FrameSize size : content.frames)
        layout.trailer += FrameBytes(content.mode, size);
    return layout;
}

std::uint8_t FrameFlags(const ZmiContent& content) {
    return static_cast<std::uint8_t>(static_cast<unsigned>(content.mode) << zmi::pixelModeShift |
                                     (content.transparentKey ? zmi::flagTransparency : 0U));
}

template <class T>
void Put(OutputFile& output, const T& structure) {
    output.Write(std::as_bytes(std::span(&structure, 1)));
}

} // namespace

std::uint32_t ZmiFileSize(const ZmiContent& content) {
    constexpr std::size_t mostFrames = std::numeric_limits<std::uint16_t>::max();
    if (content.frames.size() > mostFrames)
        throw Failure(L"there are " + std::to_wstring(content.frames.size()) +
                      L" frames; a ZMI file holds at most " + std::to_wstring(mostFrames));
    const std::uint64_t size = LayOut(content).trailer + sizeof(zmi::trailer);
    if (size > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()))
        throw Failure(L"the ZMI file would have " + std::to_wstring(size) +
                      L" bytes; it must stay below 2 GiB (2147483648 bytes)");
    return static_cast<std::uint32_t>(size);
}

ZmiWriter::ZmiWriter(OutputFile& output, const ZmiContent& content) : output_(output) {
    const std::uint32_t fileSize = ZmiFileSize(content);
    const Layout layout = LayOut(content);
    bytesLeft_ = layout.trailer - layout.pixels;

    const zmi::FileHeader fileHeader = {
        .magic = zmi::magic,
        .version = 1,
        .headerSize = sizeof(zmi::FileHeader),
        .kind = 1,
        .dataOffset = sizeof(zmi::FileHeader),
        .dataSize = static_cast<std::uint32_t>(fileSize - sizeof(zmi::FileHeader) - sizeof(zmi::trailer)),
        .unused = {}};
    Put(output_, fileHeader);

    const bool blank = content.frames.empty();
    zmi::ImageHeader imageHeader = {};
    std::copy_n(content.title.begin(), std::min(content.title.size(), zmi::longestTitle),
                imageHeader.text.begin());
    imageHeader.pixelOffset = static_cast<std::uint32_t>(blank                    ? 0
                                                         : HasFrameTable(content) ? layout.frameTable
                                                                                  : layout.pixels);
    imageHeader.paletteOffset = static_cast<std::uint32_t>(content.colorTable ? layout.colorTable : 0);
    imageHeader.transparentKey = content.transparentKey.value_or(0);
    imageHeader.flags = blank ? zmi::flagBlankDefault : FrameFlags(content);
    imageHeader.width = blank ? zmi::blankWidth : content.frames.front().width;
    imageHeader.height = blank ? zmi::blankHeight : content.frames.front().height;
    if (HasFrameTable(content))
        imageHeader.flags |= zmi::flagFrameTable;
    Put(output_, imageHeader);

    if (HasFrameTable(content)) {
        Put(output_, zmi::FrameTable{.tableWord = 0,
                                     .frameCount = static_cast<std::uint16_t>(content.frames.size()),
                                     .tableExtra = 0});
        std::uint64_t offset = layout.pixels;
        for (const FrameSize size : content.frames) {
            Put(output_, zmi::FrameRecord{.frameDataOffset = static_cast<std::uint32_t>(offset),
                                          .paletteNumber = imageHeader.paletteOffset,
                                          .extra0 = 0,
                                          .transparentKey = imageHeader.transparentKey,
                                          .flags = FrameFlags(content),
                                          .width = size.width,
                                          .height = size.height,
                                          .extra = {}});
            offset += FrameBytes(content.mode, size);
        }
    }
    if (content.colorTable)
        Put(output_, *content.colorTable);
}

void ZmiWriter::WriteRows(std::span<const std::byte> rows) {
    if (rows.size() > bytesLeft_)
        throw Failure(L"a picture grew while it was read");
    bytesLeft_ -= rows.size();
    output_.Write(rows);
}

void ZmiWriter::Finish() {
    if (bytesLeft_ != 0)
        throw Failure(L"a picture shrank while it was read");
    Put(output_, zmi::trailer);
}

} // namespace vantrel::tools
