#include "codec/Decoder.h"

#include "codec/PixelConversion.h"
#include "tests/codec/LoadFrom.h"

#include <gtest/gtest.h>

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

} // namespace

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

TEST(PixelConversion, KnownColours) {
    EXPECT_EQ(ExpandRgb565(0xFFFF), 0xFFFFFFu);
    EXPECT_EQ(ExpandRgb565(0xF7DE), 0xF0F8F0u);
    EXPECT_EQ(ExpandRgb565(0x0841), 0x080808u);
    EXPECT_EQ(ExpandRgb565(0xF800), 0xFF0000u);
}

} // namespace vantrel::tests
