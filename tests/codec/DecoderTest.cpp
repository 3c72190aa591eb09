#include "codec/Decoder.h"

#include "tests/builder/MemorySource.h"

#include <gtest/gtest.h>

namespace vantrel::tests {

// A frame with a table of its own names the position before that table's; what it names otherwise, replaying
// the fuzzer's finds checks for files of all kinds.
TEST(Decoder, PaletteNumbers) {
    ZmiBuilder made{.mode = 1};
    for (const bool ownTable : {true, true, false, true, true})
        made.frames.push_back({2, 2, {}, ownTable ? std::optional(PatternColours(5)) : std::nullopt});
    MemorySource source(made.Build());
    DecodedImage image;
    ASSERT_TRUE(LoadFrom(source, image, Keep::Everything));
    constexpr std::uint32_t numbers[] = {1, 0, 1, 2, 3}; // the first frame's own table is never looked at
    for (std::size_t i = 0; i < image.frames.size(); ++i)
        EXPECT_EQ(std::uint32_t{image.frames[i].paletteNumber}, numbers[i]) << "frame " << i;
    EXPECT_EQ(image.palettes.size(), 4u);
}

// But for the gap, which is not read at all.
TEST(Decoder, ReadsEveryByteOnceAndNeedsThemAll) {
    // With bytes that no record names, between pixels and behind them for several windows, and with a frame
    // longer than a window.
    std::vector<ZmiBuilder> files{{.gap = 3, .rest = 200000}, {.mode = 0, .frames = {{1024, 600}}, .gap = 3}};
    for (unsigned mode = 0; mode < 4; ++mode)
        files.push_back({.mode = mode, .frames = {{9, 5}, {1, 17}, {12, 3}}, .gap = 3, .rest = 200000});
    for (const ZmiBuilder& made : files) {
        Bytes file = made.Build();
        if (made.HasFrameTable())
            SetField(file, made.RecordAt(0), frame_record::height, 2);
        Bytes once(file.size(), 1);
        std::fill_n(once.begin() + file_header::size, made.gap, std::uint8_t{0});
        for (const Keep keep : {Keep::Facts, Keep::Everything}) {
            MemorySource whole(file);
            ASSERT_EQ(VerdictOf(whole, keep), Verdict::Loads);
            EXPECT_EQ(whole.Reads(), once);
            for (std::size_t call = 1; call <= whole.Calls(); ++call) {
                MemorySource failing(file);
                failing.failingCall = call;
                EXPECT_EQ(VerdictOf(failing, keep), Verdict::Fails) << "call " << call;
            }
        }
    }
}

TEST(Decoder, ManyFramesThatShareTheirPixelsStayCheap) {
    const ZmiBuilder made{.frames = std::vector(65535, ZmiFrame{300, 300}), .sharePixels = true};
    MemorySource source(made.Build());
    ASSERT_EQ(VerdictOf(source), Verdict::Loads);
    EXPECT_LT(source.Calls(), 60u);
    EXPECT_EQ(source.Reads(), Bytes(source.Reads().size(), 1));
}

} // namespace vantrel::tests
