#include "codec/Decode.h"

#include "codec/FrameReader.h"
#include "codec/ReadFile.h"

namespace vantrel {

namespace {

// Turns the records' palette offsets into palette numbers, and loads the frames' own palettes if they are to
// be kept.
bool DecodeFacts(PayloadReader& payload, DecodedImage& image, Keep keep) {
    FrameReader reader(payload);
    image.header = reader.Image();
    std::uint32_t paletteOffset = 0;
    if (ModeOf(image.header.flags) == PixelMode::Indexed) {
        if (!reader.FirstPalette())
            return false;
        image.palettes.push_back(*reader.FirstPalette());
        paletteOffset = image.header.paletteOffset;
        image.header.paletteOffset = 1;
    }
    if (!reader.ReadRecords(image.frames))
        return false;
    image.tableWord = reader.Table().tableWord;
    image.frameCount = reader.Table().frameCount;
    image.tableExtra = reader.Table().tableExtra;
    if (ModeOf(image.header.flags) == PixelMode::Monochrome)
        ElementAt(image.frames, 0);

    for (std::uint32_t i = 0; i < image.frames.size(); ++i) {
        FrameRecord& record = image.frames[i];
        const std::uint32_t own = record.paletteNumber;
        const bool hasOwn = paletteOffset != 0 && i > 0 && own != paletteOffset;
        if (hasOwn && keep == Keep::Everything &&
            !payload.Read(payload.TablePosition(own), &image.palettes.emplace_back(), sizeof(Palette)))
            return false;
        // One less than its position: intentionally not the number of the palette just loaded.
        record.paletteNumber = hasOwn ? i - 1 : paletteOffset != 0 ? 1 : 0;
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
