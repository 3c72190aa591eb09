#include "tools/pack/ZmiWriter.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/NumberText.h"

#include <algorithm>
#include <limits>

namespace vantrel::tools {

namespace {

constexpr std::uint32_t frameTableOffset = sizeof(FileHeader) + sizeof(ImageHeader);

// Offsets of what follows the frame table; an absent part has no length.
struct Layout {
    std::uint64_t palette;
    std::uint64_t pixels;
    std::uint64_t trailer;
};

bool HasFrameTable(const ZmiContent& content) {
    return content.frames.size() > 1;
}

Layout LayOut(const ZmiContent& content) {
    std::uint64_t palette = frameTableOffset;
    if (HasFrameTable(content))
        palette += sizeof(FrameTableHeader) + content.frames.size() * sizeof(FrameRecord);
    const std::uint64_t pixels = palette + (content.palette ? sizeof(Palette) : 0);
    std::uint64_t trailer = pixels;
    for (const ZmiFrame& frame : content.frames)
        trailer += PixelByteCount(content.mode, frame.width, frame.height);
    return {palette, pixels, trailer};
}

std::uint8_t FrameFlags(const ZmiContent& content, const ZmiFrame& frame) {
    constexpr unsigned modeShift = 3; // the reverse of ModeOf
    return static_cast<std::uint8_t>(static_cast<unsigned>(content.mode) << modeShift |
                                     (frame.transparentKey ? transparencyFlag : 0U));
}

template <class T>
void Put(OutputFile& output, const T& structure) {
    output.Write(std::as_bytes(std::span(&structure, 1)));
}

} // namespace

void CheckZmiLimits(std::size_t frames, std::uint64_t bytes) {
    constexpr std::size_t mostFrames = std::numeric_limits<std::uint16_t>::max();
    constexpr std::uint64_t mostBytes = std::numeric_limits<std::int32_t>::max();
    if (frames > mostFrames)
        throw Failure(L"there are " + Grouped(frames) + L" frames or more; a ZMI file holds at most " +
                      Grouped(mostFrames));
    if (bytes > mostBytes)
        throw Failure(L"the ZMI file would have " + Grouped(bytes) +
                      L" bytes or more; it must stay below 2 GiB (" + Grouped(mostBytes + 1) + L" bytes)");
}

std::uint32_t ZmiFileSize(const ZmiContent& content) {
    const std::uint64_t size = LayOut(content).trailer + sizeof zmiTrailer;
    CheckZmiLimits(content.frames.size(), size);
    return static_cast<std::uint32_t>(size);
}

ZmiWriter::ZmiWriter(OutputFile& output, const ZmiContent& content) : output_(output) {
    const std::uint32_t fileSize = ZmiFileSize(content);
    const Layout layout = LayOut(content);
    bytesLeft_ = layout.trailer - layout.pixels;

    FileHeader fileHeader = {};
    std::ranges::copy(zmiMagic, fileHeader.magic);
    fileHeader.version = zmiVersion;
    fileHeader.headerSize = sizeof(FileHeader);
    fileHeader.kind = zmiPictureKind;
    fileHeader.dataOffset = sizeof(FileHeader);
    fileHeader.dataSize = static_cast<std::uint32_t>(fileSize - sizeof(FileHeader) - sizeof zmiTrailer);
    Put(output_, fileHeader);

    const bool blank = content.frames.empty();
    const ZmiFrame first = blank ? ZmiFrame{blankDefaultWidth, blankDefaultHeight} : content.frames.front();
    ImageHeader imageHeader = {};
    std::copy_n(content.title.begin(), std::min(content.title.size(), sizeof imageHeader.text),
                imageHeader.text);
    imageHeader.pixelOffset = static_cast<std::uint32_t>(blank                    ? 0
                                                         : HasFrameTable(content) ? frameTableOffset
                                                                                  : layout.pixels);
    imageHeader.paletteOffset = static_cast<std::uint32_t>(content.palette ? layout.palette : 0);
    imageHeader.transparentKey = first.transparentKey.value_or(0);
    imageHeader.flags = blank ? blankDefaultFlag : FrameFlags(content, first);
    imageHeader.width = first.width;
    imageHeader.height = first.height;
    if (HasFrameTable(content))
        imageHeader.flags |= frameTableFlag;
    Put(output_, imageHeader);

    if (HasFrameTable(content)) {
        FrameTableHeader table = {};
        table.frameCount = static_cast<std::uint16_t>(content.frames.size());
        Put(output_, table);
        std::uint64_t offset = layout.pixels;
        for (const ZmiFrame& frame : content.frames) {
            FrameRecord record = {};
            record.frameDataOffset = static_cast<std::uint32_t>(offset);
            record.paletteNumber = imageHeader.paletteOffset;
            record.transparentKey = frame.transparentKey.value_or(0);
            record.flags = FrameFlags(content, frame);
            record.width = frame.width;
            record.height = frame.height;
            Put(output_, record);
            offset += PixelByteCount(content.mode, frame.width, frame.height);
        }
    }
    if (content.palette)
        Put(output_, *content.palette);
}

void ZmiWriter::WriteRows(std::span<const std::byte> rows) {
    if (rows.size() > bytesLeft_)
        throw Failure(L"a picture grew while being read");
    bytesLeft_ -= rows.size();
    output_.Write(rows);
}

void ZmiWriter::Finish() {
    if (bytesLeft_ != 0)
        throw Failure(L"a picture shrank while being read");
    Put(output_, zmiTrailer);
}

} // namespace vantrel::tools
