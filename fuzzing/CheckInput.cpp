#include "fuzzing/CheckInput.h"

#include "codec/Decode.h"
#include "codec/FrameConverter.h"
#include "codec/FrameReader.h"
#include "codec/ReadFile.h"
#include "tests/builder/FileFacts.h"
#include "tests/builder/MemorySource.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace vantrel::tests {

namespace {

void Require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

bool SameBytes(const void* memory, const Bytes& file, std::uint64_t at, std::size_t count) {
    return at <= file.size() && count <= file.size() - at &&
           (count == 0 || std::memcmp(memory, file.data() + at, count) == 0);
}

// Of a large frame only some rows are checked, so that most of the time goes into other inputs.
std::size_t Step(std::size_t width, std::size_t height) {
    return 1 + width * height / 0x8000;
}

std::uint64_t AllPixelBytes(const FileFacts& facts) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < facts.FrameCount(); ++i)
        sum += facts.FrameBytes(i);
    return sum;
}

void CheckHeader(const FileFacts& facts, const DecodedImage& image) {
    Bytes expected(facts.file.begin() + static_cast<std::ptrdiff_t>(facts.payload),
                   facts.file.begin() + static_cast<std::ptrdiff_t>(facts.payload + image_header::size));
    if (facts.blank) {
        SetField(expected, 0, image_header::flags, 128);
        SetField(expected, 0, image_header::width, 1024);
        SetField(expected, 0, image_header::height, 600);
    } else if (facts.mode == 1) {
        SetField(expected, 0, image_header::paletteOffset, 1);
    }
    Require(std::memcmp(&image.header, expected.data(), expected.size()) == 0,
            "the image header is carried over");
    Require(image.frames.size() == facts.FrameCount() && image.frameCount == facts.FrameCount(),
            "one record a frame");
    Require(image.tableExtra ==
                    (facts.hasTable ? GetField(facts.file, facts.pixels, frame_table::tableExtra) : 0) &&
                image.tableWord ==
                    (facts.hasTable ? GetField(facts.file, facts.pixels, frame_table::tableWord) : 0),
            "the frame table's head is carried over");
}

void CheckRecordsAndPalettes(const FileFacts& facts, const DecodedImage& image, Keep keep) {
    const std::uint32_t first = facts.Header(image_header::paletteOffset);
    const bool hasPalettes = facts.mode == 1;
    std::vector<std::uint32_t> tables;
    if (hasPalettes)
        tables.push_back(first);
    for (std::size_t i = 0; i < facts.FrameCount(); ++i) {
        Bytes expected(frame_record::size);
        if (facts.hasTable) {
            std::memcpy(expected.data(), facts.file.data() + facts.RecordAt(i), expected.size());
        } else if (!facts.blank) {
            SetField(expected, 0, frame_record::dataOffset, facts.Header(image_header::pixelOffset));
            SetField(expected, 0, frame_record::transparentKey, facts.TransparentKey(i));
        }
        SetField(expected, 0, frame_record::flags, facts.Flags(i));
        SetField(expected, 0, frame_record::width, facts.Width(i));
        SetField(expected, 0, frame_record::height, facts.Height(i));
        std::uint32_t number = hasPalettes ? 1 : 0;
        if (hasPalettes && i > 0 && facts.Record(i, frame_record::paletteOffset) != first) {
            number = static_cast<std::uint32_t>(i - 1);
            if (keep == Keep::Everything)
                tables.push_back(facts.Record(i, frame_record::paletteOffset));
        }
        SetField(expected, 0, frame_record::paletteOffset, number);
        Require(std::memcmp(&image.frames[i], expected.data(), expected.size()) == 0,
                "a frame record is carried over but for its palette's number");
    }
    Require(image.palettes.size() == tables.size(),
            "the palettes that are to be kept are there and no others");
    for (std::size_t i = 0; i < tables.size(); ++i)
        Require(SameBytes(image.palettes[i].colors, facts.file, tables[i], sizeof(Palette)),
                "a palette is a copy");
}

void CheckPixels(const FileFacts& facts, const DecodedImage& image, Keep keep) {
    Require(image.framePixels.size() == (keep == Keep::Everything ? facts.FrameCount() : 0),
            "all frames' pixels are kept or none");
    for (std::size_t i = 0; i < image.framePixels.size(); ++i) {
        const ByteBuffer& pixels = image.framePixels[i];
        if (facts.blank) {
            Require(pixels == ByteBuffer(76800, std::uint8_t{0}), "the blank default is 76,800 zeros");
            continue;
        }
        const std::size_t width = facts.Width(i), height = facts.Height(i);
        const std::size_t at = facts.PixelsAt(i);
        if (facts.mode != 0) {
            Require(pixels.size() == facts.FrameBytes(i) &&
                        SameBytes(pixels.data(), facts.file, at, pixels.size()),
                    "pixels are a copy");
            continue;
        }
        Require(pixels.size() == (height + 7) / 8 * width, "page order takes whole bands");
        for (std::size_t y = 0; y < (height + 7) / 8 * 8; y += Step(width, height))
            for (std::size_t x = 0; x < width; ++x) {
                const unsigned bit =
                    y < height ? facts.file[at + y * ((width + 7) / 8) + x / 8] >> (7 - x % 8) & 1 : 0;
                Require((pixels[y / 8 * width + x] >> y % 8 & 1) == bit, "one-bit pixels are in page order");
            }
    }
}

enum class Conversion { Done, Refused, Threw };

// Bottom-up as on a surface, or nothing if the picture is larger than the limit.
Conversion Convert(const DecodedImage& image, std::size_t i, FramePixels& pixels, std::size_t mostPixels,
                   std::vector<std::uint32_t>& words) {
    try {
        FrameConverter converter(image, i, pixels);
        const std::ptrdiff_t width = converter.Width(), height = converter.Height();
        const auto count = static_cast<std::size_t>(width * height);
        if (!converter.CanConvert() || count > mostPixels)
            return Conversion::Refused;
        words.assign(count, 0xDEADBEEF);
        return count == 0 || converter.Convert(words.data() + width * (height - 1), -width)
                   ? Conversion::Done
                   : Conversion::Refused;
    } catch (const std::out_of_range&) {
        return Conversion::Threw;
    }
}

// The result of converting a frame whose pixels are in the image.
void CheckConversion(const DecodedImage& image, std::size_t i, std::size_t mostPixels, Conversion met,
                     const std::vector<std::uint32_t>& words) {
    const FrameRecord& frame = image.frames[i];
    const ByteBuffer& bytes = image.framePixels[i];
    const unsigned mode = frame.flags / 8 % 4;
    const std::size_t width = frame.width, height = frame.height;
    const std::size_t palette = frame.paletteNumber > 0 ? frame.paletteNumber - 1 : 0;
    const std::size_t needed = mode == 0   ? (height + 7) / 8 * width
                               : mode == 1 ? width * height
                                           : 2 * width * height;
    const bool hasNoPalette = (frame.paletteNumber > 0 || mode == 1) && palette >= image.palettes.size();
    Require(met == (mode == 3                                     ? Conversion::Refused
                    : hasNoPalette                                ? Conversion::Threw
                    : width * height > mostPixels                 ? Conversion::Refused
                    : width * height > 0 && bytes.size() < needed ? Conversion::Threw
                                                                  : Conversion::Done),
            "a frame is converted, refused or throws as its record has it");
    for (std::size_t y = 0; met == Conversion::Done && y < height; y += Step(width, height))
        for (std::size_t x = 0; x < width; ++x) {
            const std::size_t at = y * width + x;
            const std::uint32_t color = mode == 0   ? bytes[y / 8 * width + x] >> y % 8 & 1 ? 0 : 0xFFFFFF
                                        : mode == 1 ? Rgb(image.palettes[palette].colors[bytes[at]])
                                                    : Rgb(bytes[2 * at] + bytes[2 * at + 1] * 256u);
            Require(words[(height - 1 - y) * width + x] == color, "a pixel has its colour");
        }
}

// Every byte of header, payload and trailer is read, and none between header and payload.
void CheckReads(const FileFacts& facts, const Bytes& reads) {
    for (std::size_t i = 0; i < reads.size(); ++i)
        Require((reads[i] > 0) == (i < file_header::size || i >= facts.payload),
                "what is to be read is read");
}

// Each frame, and frame 0 also while its file is being read, as in the handlers; `image` holds everything.
void CheckConversions(const FileFacts& facts, const DecodedImage& image, const Limits& limits) {
    MemorySource source(facts.file);
    FileHeader header;
    std::optional<PayloadReader> payload;
    Require(readFile(source, 1, header, payload, limits.window), "a file is read as often as one likes");
    std::vector<std::uint32_t> words;
    for (std::size_t i = 0; i < image.frames.size(); ++i) {
        FramePixels pixels(*payload, image.header, image.frames[i]);
        const Conversion met = Convert(image, i, pixels, limits.pixels, words);
        CheckConversion(image, i, limits.pixels, met, words);
        Require(Convert(image, image.frames.size(), pixels, limits.pixels, words) == Conversion::Threw,
                "a frame that is not there throws");
    }
    if (image.frames.empty())
        return;

    Conversion met = Conversion::Refused;
    const PixelTaker convert = [&](const DecodedImage& decoded, FramePixels& pixels) {
        met = Convert(decoded, 0, pixels, limits.pixels, words);
        return met == Conversion::Done;
    };
    MemorySource whole(facts.file);
    DecodedImage head;
    const bool loaded = DecodeFile(whole, head, Keep::Facts, convert, limits.window);
    CheckConversion(image, 0, limits.pixels, met, words);
    Require(loaded == (met == Conversion::Done),
            "a picture that can't be converted fails the load, no other does");
    if (loaded)
        CheckReads(facts, whole.Reads());
}

// Frames read one by one: with their own tables if they have any, and also from a file that does not load.
void CheckFrames(const Bytes& file, Verdict verdict, const Limits& limits) {
    MemorySource source(file);
    FileHeader header;
    std::optional<PayloadReader> payload;
    if (!readFile(source, 1, header, payload))
        return Require(verdict == Verdict::Fails, "a file that does not open does not load");
    FrameReader reader(*payload);
    bool loads = reader.Fault() == FileFault::None;
    for (std::uint16_t i = 0; i < reader.FrameCount(); ++i) {
        const auto frame = reader.Frame(i);
        Require(frame.has_value(), "a record that is there can be read");
        loads = loads && !PreventsLoading(frame->fault);
        const std::size_t width = frame->record.width, height = frame->record.height;
        if (frame->fault != FrameFault::None || width * height > limits.pixels || i > 100)
            continue;
        const FramePixelFacts facts(file, i);
        // One-bit pixels in a file of another mode are defined, but of no use.
        const std::size_t known = facts.mode != 0 || facts.file.mode == 0 ? width : 0;
        std::size_t y = 0;
        const auto takeRow = [&](const std::uint32_t* words) {
            for (std::size_t x = 0; x < known; ++x)
                Require(words[x] == (facts.file.blank ? 0xFFFFFFFF : facts.Shown(x, y)),
                        "a frame's pixel has its own colour, and is transparent if it is the key's");
            ++y;
        };
        Require(reader.Convert(*frame, takeRow) && y == height, "a frame without a fault has all its rows");
    }
    if (reader.Fault() != FileFault::NoFrame)
        Require(loads == (verdict == Verdict::Loads), "frames have no fault where their file loads");
}

} // namespace

void CheckInput(const Bytes& file, const Limits& limits) {
    const Verdict verdict = Judge(file);
    CheckFrames(file, verdict, limits);
    for (const Keep keep : {Keep::Facts, Keep::Everything}) {
        if (keep == Keep::Everything && verdict == Verdict::Loads &&
            AllPixelBytes(FileFacts(file)) > limits.pixelBytes)
            break;
        MemorySource source(file);
        DecodedImage image;
        const Verdict met = VerdictOf(source, keep, limits.window, &image);
        Require(met == verdict,
                "whether a file loads does not depend on who judges it or what is kept of it");

        if (met != Verdict::Loads)
            continue;

        const FileFacts facts(file);
        CheckReads(facts, source.Reads());
        CheckHeader(facts, image);
        CheckRecordsAndPalettes(facts, image, keep);
        CheckPixels(facts, image, keep);
        if (keep == Keep::Everything)
            CheckConversions(facts, image, limits);
    }
}

} // namespace vantrel::tests
