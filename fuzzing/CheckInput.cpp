#include "fuzzing/CheckInput.h"

#include "codec/FrameConverter.h"
#include "codec/FrameReader.h"
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

// Of a large frame only some rows are looked at, so that most of the time goes into other inputs.
std::size_t Step(std::size_t width, std::size_t height) {
    return 1 + width * height / 0x8000;
}

// The frames of a file that loads, read straight from its bytes.
struct FileFacts {
    explicit FileFacts(const Bytes& bytes) : file(bytes) {
        payload = GetField(file, 0, file_header::dataOffset);
        pixels = Header(image_header::pixelOffset);
        mode = Header(image_header::flags) / 8 % 4;
        blank = pixels == 0;
        hasTable = !blank && Header(image_header::flags) % 2 == 1;
        frameCount = hasTable ? GetField(file, pixels, frame_table::frameCount) : 1;
    }

    std::uint32_t Header(Field field) const { return GetField(file, payload, field); }
    std::size_t RecordAt(std::size_t i) const { return pixels + frame_table::size + i * frame_record::size; }
    std::uint32_t Record(std::size_t i, Field field) const { return GetField(file, RecordAt(i), field); }
    std::uint32_t Width(std::size_t i) const {
        return hasTable ? Record(i, frame_record::width) : Header(image_header::width);
    }
    std::uint32_t Height(std::size_t i) const {
        return hasTable ? Record(i, frame_record::height) : Header(image_header::height);
    }
    std::uint64_t AllPixelBytes() const {
        std::uint64_t sum = 0;
        for (std::size_t i = 0; !blank && i < frameCount; ++i)
            sum += PixelBytes(mode, Width(i), Height(i));
        return sum;
    }

    const Bytes& file;
    std::size_t payload, pixels;
    unsigned mode;
    bool blank, hasTable;
    std::size_t frameCount;
};

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
    Require(image.frames.size() == facts.frameCount && image.frameCount == facts.frameCount,
            "one record a frame");
    Require(image.tableExtra ==
                    (facts.hasTable ? GetField(facts.file, facts.pixels, frame_table::tableExtra) : 0) &&
                image.tableWord ==
                    (facts.hasTable ? GetField(facts.file, facts.pixels, frame_table::tableWord) : 0),
            "the frame table's head is carried over");
}

void CheckRecordsAndPalettes(const FileFacts& facts, const DecodedImage& image, Keep keep) {
    const std::uint32_t first = facts.Header(image_header::paletteOffset);
    const bool hasPalettes = !facts.blank && facts.mode == 1;
    std::vector<std::uint32_t> tables;
    if (hasPalettes)
        tables.push_back(first);
    for (std::size_t i = 0; i < facts.frameCount; ++i) {
        Bytes expected(frame_record::size);
        if (facts.hasTable) {
            std::memcpy(expected.data(), facts.file.data() + facts.RecordAt(i), expected.size());
        } else if (!facts.blank) {
            SetField(expected, 0, frame_record::dataOffset, facts.Header(image_header::pixelOffset));
            SetField(expected, 0, frame_record::transparentKey, facts.Header(image_header::transparentKey));
            SetField(expected, 0, frame_record::flags, facts.Header(image_header::flags));
        }
        SetField(expected, 0, frame_record::width, facts.blank ? 1024 : facts.Width(i));
        SetField(expected, 0, frame_record::height, facts.blank ? 600 : facts.Height(i));
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
        Require(SameBytes(image.palettes[i].colours, facts.file, tables[i], sizeof(Palette)),
                "a palette is a copy");
}

void CheckPixels(const FileFacts& facts, const DecodedImage& image, Keep keep) {
    Require(image.framePixels.size() == (keep == Keep::Everything ? facts.frameCount : 0),
            "all frames' pixels are kept or none");
    for (std::size_t i = 0; i < image.framePixels.size(); ++i) {
        const ByteBuffer& pixels = image.framePixels[i];
        if (facts.blank) {
            Require(pixels == ByteBuffer(76800, std::uint8_t{0}), "the blank default is 76,800 zeros");
            continue;
        }
        const std::size_t width = facts.Width(i), height = facts.Height(i);
        const std::size_t at = facts.hasTable ? facts.Record(i, frame_record::dataOffset)
                                              : facts.Header(image_header::pixelOffset);
        if (facts.mode != 0) {
            Require(pixels.size() == PixelBytes(facts.mode, facts.Width(i), facts.Height(i)) &&
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

// Pixels that stand in memory.
class HeldFramePixels final : public FramePixels {
public:
    explicit HeldFramePixels(const ByteBuffer& bytes) : bytes_(bytes) {}

    std::uint64_t Size() const override { return bytes_.size(); }
    const std::uint8_t* Next(std::uint32_t count) override {
        Require(count <= bytes_.size() - position_, "no more pixels are asked for than there are");
        position_ += count;
        return bytes_.data() + position_ - count;
    }

private:
    const ByteBuffer& bytes_;
    std::size_t position_ = 0;
};

enum class Conversion { Done, Refused, Threw };

// Bottom-up as on a surface, or not at all when the picture is larger than that.
Conversion Convert(const DecodedImage& image, std::size_t i, FramePixels& pixels, std::size_t mostPixels,
                   std::vector<std::uint32_t>& words) {
    try {
        FrameConverter converter(image, i, pixels);
        const std::ptrdiff_t width = converter.Width(), height = converter.Height();
        words.assign(static_cast<std::size_t>(width * height) <= mostPixels
                         ? static_cast<std::size_t>(width * height)
                         : 0,
                     0xDEADBEEF);
        if (!converter.CanConvert() || (words.empty() && width * height > 0))
            return Conversion::Refused;
        return words.empty() || converter.Convert(words.data() + width * (height - 1), -width)
                   ? Conversion::Done
                   : Conversion::Refused;
    } catch (const std::out_of_range&) {
        return Conversion::Threw;
    }
}

// What conversion makes of each frame that is there and of the first that is not; gives out the first
// frame's.
Conversion CheckConversion(const DecodedImage& image, std::size_t mostPixels,
                           std::vector<std::uint32_t>& first) {
    const ByteBuffer none;
    Conversion firstMet = Conversion::Threw;
    for (std::size_t i = 0; i <= image.frames.size(); ++i) {
        const ByteBuffer& bytes = i < image.frames.size() ? image.framePixels[i] : none;
        HeldFramePixels pixels(bytes);
        std::vector<std::uint32_t> words;
        const Conversion met = Convert(image, i, pixels, mostPixels, words);
        if (i >= image.frames.size()) {
            Require(met == Conversion::Threw, "a frame that is not there throws");
            continue;
        }
        const FrameRecord& frame = image.frames[i];
        const unsigned mode = frame.flags / 8 % 4;
        const std::size_t width = frame.width, height = frame.height;
        const std::size_t palette = frame.paletteNumber > 0 ? frame.paletteNumber - 1 : 0;
        const std::size_t needed = mode == 0   ? (height + 7) / 8 * width
                                   : mode == 1 ? width * height
                                               : 2 * width * height;
        const Conversion expected =
            mode == 3                                                                    ? Conversion::Refused
            : (frame.paletteNumber > 0 || mode == 1) && palette >= image.palettes.size() ? Conversion::Threw
            : width * height > mostPixels                                                ? Conversion::Refused
            : width * height > 0 && bytes.size() < needed                                ? Conversion::Threw
                                                                                         : Conversion::Done;
        Require(met == expected, "a frame is converted, refused or throws as its record has it");
        for (std::size_t y = 0; met == Conversion::Done && y < height; y += Step(width, height))
            for (std::size_t x = 0; x < width; ++x) {
                const std::size_t at = y * width + x;
                const std::uint32_t colour = mode == 0 ? bytes[y / 8 * width + x] >> y % 8 & 1 ? 0 : 0xFFFFFF
                                             : mode == 1 ? Rgb(image.palettes[palette].colours[bytes[at]])
                                                         : Rgb(bytes[2 * at] + bytes[2 * at + 1] * 256u);
                Require(words[(height - 1 - y) * width + x] == colour, "a pixel has its colour");
            }
        if (i == 0) {
            firstMet = met;
            first = std::move(words);
        }
    }
    return firstMet;
}

// Each byte of header, payload and trailer is read, and none between header and payload.
void CheckReads(const FileFacts& facts, const Bytes& reads) {
    for (std::size_t i = 0; i < reads.size(); ++i)
        Require((reads[i] > 0) == (i < file_header::size || i >= facts.payload),
                "what is to be read is read");
}

// Frame 0 converted while its file is read is frame 0 converted from memory.
void CheckConversionOnTheWay(const FileFacts& facts, const DecodedImage& image, const Limits& limits) {
    std::vector<std::uint32_t> expected, words;
    const Conversion conversion = CheckConversion(image, limits.pixels, expected);
    if (image.frames.empty())
        return;
    Conversion met = Conversion::Refused;
    const PixelTaker convert = [&](const DecodedImage& decoded, FramePixels& pixels) {
        met = Convert(decoded, 0, pixels, limits.pixels, words);
        return met == Conversion::Done;
    };
    MemorySource source(facts.file);
    DecodedImage head;
    Require(LoadFrom(source, head, Keep::Facts, convert, limits.window) == (conversion == Conversion::Done) &&
                met == conversion,
            "converting on the way changes no outcome");
    if (conversion != Conversion::Done)
        return;
    CheckReads(facts, source.Reads());
    Require(words == expected, "converting on the way changes no pixel");

    MemorySource failing(facts.file);
    failing.failingCall = 1 + facts.file.size() * 7 % source.Calls();
    head = {};
    Require(!LoadFrom(failing, head, Keep::Facts, convert, limits.window), "a failing read fails the load");
}

// Frames taken one by one: with their own tables where they have some, and also out of a file that does not
// load.
void CheckFrames(const Bytes& file, Verdict verdict, const Limits& limits) {
    MemorySource source(file);
    FrameReader reader(source);
    bool loads = reader.Fault() == FileFault::None;
    for (std::uint16_t i = 0; i < reader.FrameCount(); ++i) {
        const auto frame = reader.Frame(i);
        Require(frame.has_value(), "a record that is there can be read");
        loads = loads && frame->fault != FrameFault::ColourTable && frame->fault != FrameFault::Pixels;
        const std::size_t width = frame->record.width, height = frame->record.height;
        if (frame->fault != FrameFault::None || width * height > limits.pixels || i > 100)
            continue;
        const FileFacts facts(file);
        const unsigned mode = frame->record.flags / 8 % 4;
        const std::size_t at = frame->record.frameDataOffset;
        const std::size_t rowBytes = mode == 0 ? (width + 7) / 8 : width * mode;
        const std::size_t palette =
            i == 0 ? facts.Header(image_header::paletteOffset) : std::size_t{frame->record.paletteNumber};
        std::size_t y = 0;
        const auto takeRow = [&](const std::uint32_t* words) {
            // One-bit pixels of a file of another mode have a meaning, but no use.
            for (std::size_t x = 0; x < width && (mode != 0 || facts.mode == 0); ++x) {
                const std::size_t pixel = at + y * rowBytes;
                const std::uint32_t raw = facts.blank ? 0
                                          : mode == 0 ? file[pixel + x / 8] >> (7 - x % 8) & 1
                                                      : GetField(file, pixel + x * mode, {0, mode});
                const std::uint32_t colour = mode == 0   ? raw == 0 ? 0xFFFFFF : 0
                                             : mode == 1 ? Rgb(GetField(file, palette + 2 * raw, {0, 2}))
                                                         : Rgb(raw);
                const bool transparent =
                    mode != 0 && frame->record.flags & 0x20 && raw == frame->record.transparentKey;
                Require(words[x] == (transparent ? colour : 0xFF000000 | colour),
                        "a frame's pixel has its own colour, and is transparent if it is the key's");
            }
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
            FileFacts(file).AllPixelBytes() > limits.pixelBytes)
            break;
        MemorySource source(file);
        DecodedImage image;
        Verdict met = Verdict::Throws;
        try {
            met = LoadFrom(source, image, keep, {}, limits.window) ? Verdict::Loads : Verdict::Fails;
        } catch (const std::out_of_range&) {
        }
        Require(met == verdict,
                "whether a file loads does not depend on who judges it or what is kept of it");

        MemorySource failing(file);
        failing.failingCall = 1 + file.size() % source.Calls();
        Require(VerdictOf(failing, keep, limits.window) != Verdict::Loads, "a failing read fails the load");
        if (met != Verdict::Loads)
            continue;

        const FileFacts facts(file);
        CheckReads(facts, source.Reads());
        CheckHeader(facts, image);
        CheckRecordsAndPalettes(facts, image, keep);
        CheckPixels(facts, image, keep);
        if (keep == Keep::Everything)
            CheckConversionOnTheWay(facts, image, limits);
    }
}

} // namespace vantrel::tests
