#include "codec/Decoder.h"

#include "codec/PageOrder.h"

#include <algorithm>

namespace vantrel {

namespace {

void MakeBlankDefault(DecodedImage& image, std::uint32_t framesWanted) {
    image.header.flags = blankDefaultFlag;
    image.header.width = blankDefaultWidth;
    image.header.height = blankDefaultHeight;
    image.frameCount = 1;
    image.tableExtra = 0;
    FrameRecord frame{};
    frame.width = blankDefaultWidth;
    frame.height = blankDefaultHeight;
    image.frames.push_back(frame);
    if (framesWanted > 0)
        image.framePixels.emplace_back(
            DecodedByteCount(PixelMode::Monochrome, blankDefaultWidth, blankDefaultHeight), std::uint8_t{0});
}

void MakeSingleFrame(DecodedImage& image, bool hasPalette) {
    image.frameCount = 1;
    image.tableExtra = 0;
    FrameRecord frame{};
    frame.frameDataOffset = image.header.pixelOffset;
    frame.paletteNumber = hasPalette ? 1 : 0;
    frame.transparentKey = image.header.transparentKey;
    frame.flags = image.header.flags;
    frame.width = image.header.width;
    frame.height = image.header.height;
    image.frames.push_back(frame);
}

bool ReadPalette(PayloadReader& payload, std::uint32_t fileOffset, DecodedImage& image) {
    Palette palette;
    if (!payload.Read(payload.TablePosition(fileOffset), &palette, sizeof palette))
        return false;
    image.palettes.push_back(palette);
    return true;
}

bool ReadFrameTable(PayloadReader& payload, DecodedImage& image) {
    const std::uint32_t tableOffset = image.header.pixelOffset;
    FrameTableHeader table;
    if (!payload.Read(payload.TablePosition(tableOffset), &table, sizeof table))
        return false;
    image.tableWord = table.tableWord;
    image.frameCount = table.frameCount;
    image.tableExtra = table.tableExtra;

    const std::int64_t records = payload.PixelPosition(tableOffset + std::uint32_t{sizeof table});
    const std::size_t bytes = table.frameCount * sizeof(FrameRecord);
    if (!payload.Contains(records, bytes))
        return false;
    image.frames.resize(table.frameCount);
    return payload.Read(records, image.frames.data(), bytes);
}

// Turns the records' palette offsets into palette numbers and loads the wanted frames' own tables.
bool NumberPalettes(PayloadReader& payload, std::uint32_t paletteOffset, DecodedImage& image,
                    std::uint32_t framesWanted) {
    for (std::uint32_t i = 0; i < image.frames.size(); ++i) {
        FrameRecord& frame = image.frames[i];
        if (paletteOffset == 0) {
            frame.paletteNumber = 0;
        } else if (i == 0 || frame.paletteNumber == paletteOffset) {
            frame.paletteNumber = 1;
        } else {
            const std::uint32_t own = frame.paletteNumber;
            if (i < framesWanted ? !ReadPalette(payload, own, image)
                                 : !payload.Contains(payload.TablePosition(own), sizeof(Palette)))
                return false;
            // One less than its position: not the number of the table just loaded, and meant so.
            frame.paletteNumber = i - 1;
        }
    }
    return true;
}

bool ReadPixels(PayloadReader& payload, DecodedImage& image, std::uint32_t framesWanted) {
    const PixelMode mode = ModeOf(image.header.flags);
    if (mode == PixelMode::Monochrome)
        ElementAt(image.frames, 0);
    image.framePixels.reserve(std::min<std::size_t>(framesWanted, image.frames.size()));
    for (std::uint32_t i = 0; i < image.frames.size(); ++i) {
        const FrameRecord& frame = image.frames[i];
        const std::int64_t position = payload.PixelPosition(frame.frameDataOffset);
        const std::uint64_t count = PixelByteCount(mode, frame.width, frame.height);
        if (!payload.Contains(position, count))
            return false;
        if (i >= framesWanted)
            continue;
        ByteBuffer pixels;
        pixels.resize(count);
        if (!payload.Read(position, pixels.data(), count))
            return false;
        image.framePixels.push_back(mode == PixelMode::Monochrome
                                        ? toPageOrder(pixels, frame.width, frame.height)
                                        : std::move(pixels));
    }
    return true;
}

bool DecodeFrames(PayloadReader& payload, DecodedImage& image, std::uint32_t framesWanted) {
    if (!payload.Read(0, &image.header, sizeof image.header))
        return false;
    if (image.header.pixelOffset == 0) {
        MakeBlankDefault(image, framesWanted);
        return true;
    }

    std::uint32_t paletteOffset = 0;
    if (ModeOf(image.header.flags) == PixelMode::Indexed) {
        paletteOffset = image.header.paletteOffset;
        if (!ReadPalette(payload, paletteOffset, image))
            return false;
        image.header.paletteOffset = 1;
    }

    if (image.header.flags & frameTableFlag) {
        if (!ReadFrameTable(payload, image) || !NumberPalettes(payload, paletteOffset, image, framesWanted))
            return false;
    } else {
        MakeSingleFrame(image, paletteOffset != 0);
    }
    return ReadPixels(payload, image, framesWanted);
}

} // namespace

bool decode(PayloadReader& payload, DecodedImage& image, std::uint32_t framesWanted,
            const PixelTaker& takePixels) {
    if (!DecodeFrames(payload, image, framesWanted))
        return false;
    if (takePixels) {
        FileFramePixels pixels(payload, image, 0);
        if (!takePixels(pixels))
            return false;
    }
    return payload.ReadRest();
}

} // namespace vantrel
