#include "codec/Decode.h"

#include "codec/ReadFile.h"

namespace vantrel {

namespace {

void MakeBlankDefault(DecodedImage& image) {
    image.header.flags = blankDefaultFlag;
    image.header.width = blankDefaultWidth;
    image.header.height = blankDefaultHeight;
    image.frameCount = 1;
    image.frames.push_back(SingleFrame(image.header));
}

void MakeSingleFrame(DecodedImage& image, bool hasPalette) {
    image.frameCount = 1;
    FrameRecord frame = SingleFrame(image.header);
    frame.paletteNumber = hasPalette ? 1 : 0;
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

// Turns the records' palette offsets into palette numbers and loads the frames' own tables if they are to be
// kept.
bool NumberPalettes(PayloadReader& payload, std::uint32_t paletteOffset, DecodedImage& image, Keep keep) {
    for (std::uint32_t i = 0; i < image.frames.size(); ++i) {
        FrameRecord& frame = image.frames[i];
        if (paletteOffset == 0) {
            frame.paletteNumber = 0;
        } else if (i == 0 || frame.paletteNumber == paletteOffset) {
            frame.paletteNumber = 1;
        } else {
            const std::uint32_t own = frame.paletteNumber;
            if (keep == Keep::Everything ? !ReadPalette(payload, own, image)
                                         : !payload.Contains(payload.TablePosition(own), sizeof(Palette)))
                return false;
            // One less than its position: intentionally not the number of the table just loaded.
            frame.paletteNumber = i - 1;
        }
    }
    return true;
}

bool DecodeFacts(PayloadReader& payload, DecodedImage& image, Keep keep) {
    if (!payload.Read(0, &image.header, sizeof image.header))
        return false;
    if (image.header.pixelOffset == 0) {
        MakeBlankDefault(image);
        return true;
    }

    const PixelMode mode = ModeOf(image.header.flags);
    std::uint32_t paletteOffset = 0;
    if (mode == PixelMode::Indexed) {
        paletteOffset = image.header.paletteOffset;
        if (!ReadPalette(payload, paletteOffset, image))
            return false;
        image.header.paletteOffset = 1;
    }

    if (image.header.flags & frameTableFlag) {
        if (!ReadFrameTable(payload, image) || !NumberPalettes(payload, paletteOffset, image, keep))
            return false;
    } else {
        MakeSingleFrame(image, paletteOffset != 0);
    }

    if (mode == PixelMode::Monochrome)
        ElementAt(image.frames, 0);
    for (const FrameRecord& frame : image.frames) {
        if (!payload.Contains(payload.PixelPosition(frame.frameDataOffset),
                              PixelByteCount(mode, frame.width, frame.height)))
            return false;
    }
    return true;
}

bool KeepPixels(PayloadReader& payload, DecodedImage& image) {
    image.framePixels.reserve(image.frames.size());
    for (const FrameRecord& frame : image.frames) {
        FramePixels pixels(payload, image.header, frame);
        const std::uint32_t piece = DecodedRowBytes(ModeOf(image.header.flags), frame.width);
        ByteBuffer& kept = image.framePixels.emplace_back();
        kept.reserve(pixels.Size());
        while (kept.size() < pixels.Size()) {
            const std::uint8_t* const bytes = pixels.Next(piece);
            if (!bytes)
                return false;
            kept.insert(kept.end(), bytes, bytes + piece);
        }
    }
    return true;
}

} // namespace

bool decode(PayloadReader& payload, DecodedImage& image, Keep keep, const PixelTaker& takePixels) {
    if (!DecodeFacts(payload, image, keep) || (keep == Keep::Everything && !KeepPixels(payload, image)))
        return false;
    if (takePixels) {
        FramePixels pixels(payload, image.header, ElementAt(image.frames, 0));
        if (!takePixels(image, pixels))
            return false;
    }
    return payload.ReadRest();
}

bool DecodeFile(ByteSource& source, DecodedImage& image, Keep keep, const PixelTaker& takePixels,
                std::uint32_t windowSize) {
    FileHeader header;
    std::optional<PayloadReader> payload;
    return readFile(source, zmiPictureKind, header, payload, windowSize) &&
           decode(*payload, image, keep, takePixels);
}

} // namespace vantrel
