#include "codec/Decoder.h"

#include "codec/PageOrder.h"
#include "tests/codec/LoadFrom.h"

#include <gtest/gtest.h>

namespace vantrel::tests {

namespace {

constexpr std::uint32_t framesWantedChoices[] = {0, 1, 2, allFrames};

// Three frames of different shapes, the last with a colour table of its own where there are any.
ZmiBuilder Animation(unsigned mode) {
    ZmiBuilder file{.mode = mode, .frames = {{9, 5}, {1, 17}, {12, 3}}, .gap = 3};
    if (mode == 1)
        file.frames[2].palette = PatternColours(9);
    return file;
}

} // namespace

// A frame with a table of its own names the position before that table's; what it names otherwise, replaying
// the fuzzer's finds checks for files of all kinds.
TEST(Decoder, PaletteNumbers) {
    ZmiBuilder made{.mode = 1};
    for (const bool ownTable : {true, true, false, true, true})
        made.frames.push_back({2, 2, {}, ownTable ? std::optional(PatternColours(5)) : std::nullopt});
    MemorySource source(made.Build());
    DecodedImage image;
    ASSERT_TRUE(LoadFrom(source, image));
    constexpr std::uint32_t numbers[] = {1, 0, 1, 2, 3}; // the first frame's own table is never looked at
    for (std::size_t i = 0; i < image.frames.size(); ++i)
        EXPECT_EQ(std::uint32_t{image.frames[i].paletteNumber}, numbers[i]) << "frame " << i;
    EXPECT_EQ(image.palettes.size(), 4u);
}

TEST(Decoder, MonochromeFilesNeedAFirstFrame) {
    MemorySource source(ZmiBuilder{.mode = 0, .frameTable = true}.Build());
    for (const std::uint32_t wanted : framesWantedChoices)
        EXPECT_EQ(VerdictOf(source, wanted), Verdict::Throws) << "frames wanted: " << wanted;
    try {
        DecodedImage image;
        LoadFrom(source, image);
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
    }
}

TEST(Decoder, TruncationAtEveryByte) {
    for (const ZmiBuilder& made :
         {Animation(0), Animation(1), Animation(2), Animation(3), ZmiBuilder{.title = "blank"}}) {
        const Bytes file = made.Build();
        for (std::size_t length = 0; length < file.size(); ++length) {
            SCOPED_TRACE(testing::Message() << "mode " << made.mode << " cut to " << length);
            Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            ASSERT_EQ(VerdictOf(MemorySource(cut)), Verdict::Fails);
            if (length < made.PayloadAt() || length >= file.size() - 4)
                continue;
            // The same with a header and trailer that vouch for it: the last bytes are missing at least.
            SetField(cut, 0, file_header::dataSize, static_cast<std::uint32_t>(length - made.PayloadAt()));
            cut.insert(cut.end(), file.end() - 4, file.end());
            for (const std::uint32_t wanted : framesWantedChoices)
                ASSERT_EQ(VerdictOf(MemorySource(cut), wanted), Verdict::Fails) << "wanted " << wanted;
        }
    }
}

TEST(Decoder, ReadsEveryByteOnceAndNeedsThemAll) {
    // With bytes that no record names, between pixels and behind them for several windows, and with a frame
    // longer than a window.
    std::vector<Bytes> files{ZmiBuilder{.gap = 3, .rest = 200000}.Build(),
                             ZmiBuilder{.mode = 0, .frames = {{1024, 600}}, .gap = 3}.Build()};
    for (unsigned mode = 0; mode < 4; ++mode) {
        ZmiBuilder made = Animation(mode);
        made.rest = 200000;
        files.push_back(made.Build());
        SetField(files.back(), made.RecordAt(0), frame_record::height, 2);
    }
    for (const Bytes& file : files)
        for (const std::uint32_t wanted : framesWantedChoices) {
            MemorySource whole(file);
            ASSERT_EQ(VerdictOf(whole, wanted), Verdict::Loads);
            EXPECT_EQ(whole.Reads(), std::vector<unsigned>(file.size(), 1)) << "wanted " << wanted;
            for (std::size_t call = 1; call <= whole.Calls(); ++call) {
                MemorySource failing(file);
                failing.failingCall = call;
                EXPECT_EQ(VerdictOf(failing, wanted), Verdict::Fails) << "call " << call;
            }
        }
}

TEST(Decoder, ManyFramesThatShareTheirPixelsStayCheap) {
    const ZmiBuilder made{.frames = std::vector(65535, ZmiFrame{300, 300}), .sharePixels = true};
    for (const std::uint32_t wanted : {0u, 1u}) {
        MemorySource source(made.Build());
        ASSERT_EQ(VerdictOf(source, wanted), Verdict::Loads);
        EXPECT_LT(source.Calls(), 60u);
        EXPECT_EQ(source.Reads(), std::vector<unsigned>(source.Reads().size(), 1));
    }
}

TEST(PageOrder, RefusesTooFewRows) {
    EXPECT_THROW(toPageOrder(ByteBuffer(11), 10, 6), std::out_of_range);
}

} // namespace vantrel::tests
