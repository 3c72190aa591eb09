#include "codec/Decoder.h"

#include "codec/PageOrder.h"
#include "codec/PixelConversion.h"
#include "tests/codec/LoadFrom.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vantrel::tests {

namespace {

constexpr std::uint32_t framesWantedChoices[] = {0, 1, 2, allFrames};

// Three frames of different shapes, the last with a colour table of its own where there are any.
ZmiBuilder Animation(unsigned mode) {
    ZmiBuilder file{.mode = mode,
                    .frames = {{9, 5}, {1, 17}, {12, 3}},
                    .title = "Animation",
                    .transparentKey = 0x1234,
                    .gap = 3};
    if (mode == 1)
        file.frames[2].palette = PatternColours(9);
    return file;
}

DecodedImage Decoded(const Bytes& file, std::uint32_t framesWanted = allFrames) {
    MemorySource source(file);
    DecodedImage image;
    EXPECT_TRUE(LoadFrom(source, image, framesWanted));
    return image;
}

// Files with bytes that no record names: between pixels, and behind them for several windows.
std::vector<Bytes> FilesWithHoles() {
    std::vector<Bytes> files{ZmiBuilder{.gap = 3, .rest = 200000}.Build()};
    for (unsigned mode = 0; mode < 4; ++mode) {
        ZmiBuilder made = Animation(mode);
        made.rest = 200000;
        files.push_back(made.Build());
        SetField(files.back(), made.RecordAt(0), frame_record::height, 2);
    }
    return files;
}

Bytes FramePixels(const Bytes& file, const ZmiBuilder& made, std::size_t frame) {
    const auto begin = file.begin() + static_cast<std::ptrdiff_t>(made.PixelsAt(frame));
    const std::size_t count = PixelBytes(made.mode, made.frames[frame].width, made.frames[frame].height);
    return Bytes(begin, begin + static_cast<std::ptrdiff_t>(count));
}

} // namespace

TEST(Decoder, CarriesEverythingOver) {
    for (unsigned mode = 0; mode < 4; ++mode)
        for (const bool single : {false, true}) {
            SCOPED_TRACE(mode * 10 + single);
            ZmiBuilder made = Animation(mode);
            if (single)
                made.frames.resize(1);
            const Bytes file = made.Build();
            const DecodedImage image = Decoded(file);

            Bytes expected(file.begin() + 115, file.begin() + 115 + 55);
            if (mode == 1)
                SetField(expected, 0, image_header::paletteOffset, 1);
            EXPECT_EQ(std::memcmp(&image.header, expected.data(), expected.size()), 0);

            EXPECT_EQ(image.frameCount, made.frames.size());
            ASSERT_EQ(image.frames.size(), made.frames.size());
            ASSERT_EQ(image.framePixels.size(), made.frames.size());
            for (std::size_t i = 0; i < image.frames.size(); ++i) {
                Bytes record(27);
                if (single) {
                    SetField(record, 0, frame_record::dataOffset,
                             static_cast<std::uint32_t>(made.PixelsAt(0)));
                    SetField(record, 0, frame_record::transparentKey, 0x1234);
                    SetField(record, 0, frame_record::flags, mode << 3 | 0x20);
                    SetField(record, 0, frame_record::width, 9);
                    SetField(record, 0, frame_record::height, 5);
                } else {
                    std::memcpy(record.data(), file.data() + made.RecordAt(i), record.size());
                }
                SetField(record, 0, frame_record::paletteOffset, mode == 1 ? 1 : 0);
                EXPECT_EQ(std::memcmp(&image.frames[i], record.data(), record.size()), 0) << i;

                const Bytes pixels = FramePixels(file, made, i);
                const ByteBuffer raw(pixels.begin(), pixels.end());
                EXPECT_EQ(image.framePixels[i],
                          mode == 0 ? toPageOrder(raw, made.frames[i].width, made.frames[i].height) : raw)
                    << i;
            }
            if (!single) {
                EXPECT_EQ(image.tableWord, GetField(file, made.FrameTableAt(), frame_table::tableWord));
                EXPECT_EQ(image.tableExtra, GetField(file, made.FrameTableAt(), frame_table::tableExtra));
            } else {
                EXPECT_EQ(image.tableExtra, 0);
            }
            ASSERT_EQ(image.palettes.size(), mode != 1 ? 0u : single ? 1u : 2u);
            for (std::size_t i = 0; i < image.palettes.size(); ++i)
                EXPECT_EQ(
                    std::memcmp(image.palettes[i].colours, i ? &*made.frames[2].palette : &made.palette, 512),
                    0);
        }
}

TEST(Decoder, PaletteNumbers) {
    const Colours own = PatternColours(5);
    const struct {
        std::vector<bool> ownTable; // per frame
        std::vector<std::uint32_t> numbers;
        std::size_t tables;
    } cases[] = {
        {{false, false, false}, {1, 1, 1}, 1},
        {{false, true, false}, {1, 0, 1}, 2},
        {{true, false}, {1, 1}, 1}, // the first frame's own table is never looked at
        {{false, true, true, false, true, true}, {1, 0, 1, 1, 3, 4}, 5},
    };
    for (const auto& [ownTable, numbers, tables] : cases)
        for (const unsigned mode : {0u, 1u, 2u, 3u}) {
            ZmiBuilder made{.mode = mode};
            for (const bool has : ownTable)
                made.frames.push_back(
                    {.width = 2, .height = 2, .palette = has ? std::optional(own) : std::nullopt});
            const DecodedImage image = Decoded(made.Build());
            for (std::size_t i = 0; i < numbers.size(); ++i)
                EXPECT_EQ(std::uint32_t{image.frames[i].paletteNumber}, mode == 1 ? numbers[i] : 0)
                    << mode << ", frame " << i;
            EXPECT_EQ(image.palettes.size(), mode == 1 ? tables : 0);
        }
}

TEST(Decoder, KeepsOnlyTheFramesWanted) {
    const Bytes file = Animation(1).Build();
    for (const std::uint32_t wanted : framesWantedChoices) {
        const DecodedImage image = Decoded(file, wanted);
        EXPECT_EQ(image.frames.size(), 3u);
        EXPECT_EQ(image.framePixels.size(), std::min(wanted, 3u));
        EXPECT_EQ(image.palettes.size(), wanted >= 3 ? 2u : 1u);
    }
}

TEST(Decoder, BlankDefault) {
    for (unsigned mode = 0; mode < 4; ++mode) {
        Bytes file = ZmiBuilder{.mode = mode, .title = "Nothing"}.Build();
        file[112 + image_header::flags.offset] |= 0x21; // neither transparent nor an animation
        SetField(file, 112, image_header::paletteOffset, 77);
        const DecodedImage image = Decoded(file);
        Bytes header(file.begin() + 112, file.begin() + 112 + 55);
        SetField(header, 0, image_header::flags, 0x80);
        SetField(header, 0, image_header::width, 1024);
        SetField(header, 0, image_header::height, 600);
        EXPECT_EQ(std::memcmp(&image.header, header.data(), header.size()), 0);
        EXPECT_EQ(image.frameCount, 1);
        EXPECT_EQ(image.tableExtra, 0);
        Bytes record(27);
        SetField(record, 0, frame_record::width, 1024);
        SetField(record, 0, frame_record::height, 600);
        ASSERT_EQ(image.frames.size(), 1u);
        EXPECT_EQ(std::memcmp(image.frames.data(), record.data(), record.size()), 0);
        ASSERT_EQ(image.framePixels.size(), 1u);
        EXPECT_EQ(image.framePixels[0], ByteBuffer(76800, std::uint8_t{0}));
        EXPECT_TRUE(image.palettes.empty());
        EXPECT_TRUE(Decoded(file, 0).framePixels.empty());
    }
}

TEST(Decoder, EmptyFrameTable) {
    for (unsigned mode = 0; mode < 4; ++mode)
        for (const std::uint32_t wanted : framesWantedChoices) {
            const Bytes file = ZmiBuilder{.mode = mode, .frameTable = true}.Build();
            if (mode == 0) {
                MemorySource source(file);
                DecodedImage image;
                try {
                    LoadFrom(source, image, wanted);
                    FAIL() << "nothing thrown, frames wanted: " << wanted;
                } catch (const std::out_of_range& error) {
                    EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
                }
            } else {
                EXPECT_TRUE(Decoded(file, wanted).frames.empty());
            }
        }
}

TEST(Decoder, EveryOffsetAndSizeIsChecked) {
    std::size_t loads = 0, fails = 0;
    for (unsigned mode = 0; mode < 4; ++mode) {
        const ZmiBuilder made = Animation(mode);
        const Bytes file = made.Build();
        const auto payload = static_cast<std::uint32_t>(made.PayloadAt());
        const auto end = static_cast<std::uint32_t>(file.size() - 4);
        std::vector<std::uint32_t> values{
            0,       1,       2,         payload - 1, payload,    payload + 1,
            end - 1, end,     end + 1,   0x7FFFFFFF,  0x80000000, 0xFFFFFFFF,
            end - 8, end - 7, end - 512, end - 511,   end - 27,   payload + 0x80000000};
        for (const std::size_t offset : {made.FrameTableAt(), made.PixelsAt(1), made.PixelsAt(2)})
            values.push_back(static_cast<std::uint32_t>(offset + 1));
        std::vector<std::pair<std::size_t, Field>> fields;
        for (const Field field : {image_header::pixelOffset, image_header::paletteOffset, image_header::flags,
                                  image_header::width, image_header::height})
            fields.emplace_back(made.PayloadAt(), field);
        fields.emplace_back(made.FrameTableAt(), frame_table::frameCount);
        for (std::size_t i = 0; i < 3; ++i)
            for (const Field field : {frame_record::dataOffset, frame_record::paletteOffset,
                                      frame_record::flags, frame_record::width, frame_record::height})
                fields.emplace_back(made.RecordAt(i), field);

        for (const auto& [base, field] : fields)
            for (const std::uint32_t value : values) {
                Bytes changed = file;
                SetField(changed, base, field, value);
                const Verdict expected = Judge(changed);
                ++(expected == Verdict::Loads ? loads : fails);
                for (const std::uint32_t wanted : framesWantedChoices)
                    ASSERT_EQ(VerdictOf(changed, wanted), expected)
                        << "mode " << mode << ", " << base << " + " << field.offset << " = " << value
                        << ", wanted " << wanted;
            }
    }
    EXPECT_GT(loads, 300u);
    EXPECT_GT(fails, 300u);
}

TEST(Decoder, TruncationAtEveryByte) {
    for (unsigned mode = 0; mode < 4; ++mode) {
        const ZmiBuilder made = Animation(mode);
        const Bytes file = made.Build();
        for (std::size_t length = 0; length < file.size(); ++length) {
            const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            ASSERT_EQ(VerdictOf(cut), Verdict::Fails) << length;
            if (length < made.PayloadAt() || length >= file.size() - 4)
                continue;
            // The same with a header and trailer that vouch for it: the last pixels are missing at least.
            Bytes vouched = cut;
            SetField(vouched, 0, file_header::dataSize,
                     static_cast<std::uint32_t>(length - made.PayloadAt()));
            vouched.insert(vouched.end(), file.end() - 4, file.end());
            for (const std::uint32_t wanted : framesWantedChoices)
                ASSERT_EQ(VerdictOf(vouched, wanted), Verdict::Fails) << length << ", wanted " << wanted;
        }
    }
}

TEST(Decoder, FailureOfAnyReadFailsTheLoad) {
    for (const Bytes& file : FilesWithHoles())
        for (const std::uint32_t wanted : framesWantedChoices)
            for (std::size_t call = 1;; ++call) {
                MemorySource source(file);
                source.failingCall = call;
                DecodedImage image;
                const bool loaded = LoadFrom(source, image, wanted);
                const bool faultMet = source.Calls() >= call;
                ASSERT_NE(loaded, faultMet) << "call " << call;
                if (!faultMet)
                    break;
                ASSERT_LT(call, 50u);
            }
}

TEST(Decoder, ReadsEveryByteOnce) {
    for (const Bytes& file : FilesWithHoles())
        for (const std::uint32_t wanted : framesWantedChoices) {
            MemorySource source(file);
            DecodedImage image;
            ASSERT_TRUE(LoadFrom(source, image, wanted));
            std::vector<unsigned> expected(file.size(), 1);
            std::fill_n(expected.begin() + 112, 3, 0u); // the gap
            EXPECT_EQ(source.Reads(), expected) << "wanted " << wanted;
        }
}

TEST(Decoder, ManyFramesThatShareTheirPixelsStayCheap) {
    ZmiBuilder made{.frames = std::vector(65535, ZmiFrame{300, 300}), .sharePixels = true};
    const Bytes file = made.Build();
    for (const std::uint32_t wanted : {0u, 1u}) {
        MemorySource source(file);
        DecodedImage image;
        ASSERT_TRUE(LoadFrom(source, image, wanted));
        EXPECT_EQ(image.frames.size(), 65535u);
        EXPECT_LT(source.Calls(), 60u);
        EXPECT_EQ(source.Reads(), std::vector<unsigned>(file.size(), 1));
    }

    // Asked for, a range inside another is read once more, and the rest of the outer one is not.
    made.frames = {{300, 300}, {3, 3}};
    MemorySource source(made.Build());
    DecodedImage image;
    ASSERT_TRUE(LoadFrom(source, image));
    std::vector<unsigned> expected(source.Reads().size(), 1);
    std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(made.PixelsAt(0)), 18, 2u);
    EXPECT_EQ(source.Reads(), expected);
}

TEST(Decoder, ShortPayloads) {
    Bytes file = ZmiBuilder{}.Build(); // blank: the image header alone
    EXPECT_EQ(VerdictOf(file), Verdict::Loads);
    for (std::uint32_t size = 55; size-- > 0;) {
        file.erase(file.end() - 5);
        SetField(file, 0, file_header::dataSize, size);
        EXPECT_EQ(VerdictOf(file, 0), Verdict::Fails) << size;
    }
}

TEST(PixelConversion, EqualsTheFormatAtManySizes) {
    for (unsigned mode = 0; mode < 3; ++mode)
        for (const auto& [width, height] :
             {std::pair{1, 1}, {1, 9}, {2, 8}, {7, 3}, {8, 16}, {13, 11}, {17, 31}, {257, 33}}) {
            ZmiBuilder made{
                .mode = mode,
                .frames = {{static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)}}};
            const DecodedImage image = Decoded(made.Build());
            const std::uint8_t* const pixels = image.framePixels[0].data();
            const auto columns = static_cast<unsigned>(width);
            std::vector<std::uint32_t> row(columns), palette(256);
            if (mode == 1)
                ExpandPalette(image.palettes[0], palette.data());
            for (unsigned y = 0; y < static_cast<unsigned>(height); ++y) {
                if (mode == 0)
                    ConvertMonochromeRow(pixels + y / 8 * columns, y % 8, row.data(), columns);
                else if (mode == 1)
                    ConvertIndexedRow(pixels + y * columns, palette.data(), row.data(), columns);
                else
                    ConvertRgb565Row(pixels + y * columns * 2, row.data(), columns);
                for (unsigned x = 0; x < columns; ++x)
                    ASSERT_EQ(row[x], made.ExpectedPixel(x, y)) << "mode " << mode << ", " << x << ", " << y;
            }
        }
}

TEST(PixelConversion, KnownColours) {
    EXPECT_EQ(ExpandRgb565(0xFFFF), 0xFFFFFFu);
    EXPECT_EQ(ExpandRgb565(0xF7DE), 0xF0F8F0u);
    EXPECT_EQ(ExpandRgb565(0x0841), 0x080808u);
    EXPECT_EQ(ExpandRgb565(0xF800), 0xFF0000u);
}

} // namespace vantrel::tests
