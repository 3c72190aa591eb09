#include "codec/Decode.h"

#include "tests/builder/MemorySource.h"

#include <gtest/gtest.h>

namespace vantrel::tests {

// Except for the gap, which is not read at all.
TEST(Decode, ReadsEveryByteOnceAndNeedsThemAll) {
    // A file that fits into one window. With unreferenced bytes between the pixels and, for several windows,
    // after them, and with a frame longer than a window.
    std::vector<ZmiBuilder> files{{.frames = {{5, 3}}, .gap = 3},
                                  {.gap = 3, .rest = 200000},
                                  {.mode = 0, .frames = {{1024, 600}}, .gap = 3}};
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

// The records in one read, and the rest in the order in which the file has it.
TEST(Decode, ReadsTablesBeforePixels) {
    ZmiBuilder made{.mode = 1, .frames = {{300, 300}, {9, 5}}, .rest = 200000};
    made.frames[1].palette = PatternColors(1);
    MemorySource source(made.Build());
    ASSERT_EQ(VerdictOf(source), Verdict::Loads);
    const auto end = static_cast<std::uint32_t>(source.Reads().size() - 4);
    std::vector<std::pair<std::int64_t, std::uint32_t>> expected{{0, 112},   {end, 4}, {112, 55},
                                                                 {167, 512}, {679, 8}, {687, 54}};
    for (auto at = static_cast<std::uint32_t>(made.RecordAt(2)); at < end; at += 65536)
        expected.emplace_back(at, std::min(65536u, end - at));
    EXPECT_EQ(source.Ranges(), expected);
}

TEST(Decode, CountsPixelBytesIn64Bits) {
    Bytes file =
        ZmiBuilder{.frames = {{32767, 1}}}.Build(); // 65,534 bytes, as 65535 x 32769 has beyond 4 GiB
    SetField(file, file_header::size, image_header::width, 65535);
    SetField(file, file_header::size, image_header::height, 32769);
    EXPECT_EQ(VerdictOf(MemorySource(file)), Verdict::Fails);
}

TEST(Decode, ManyFramesThatShareTheirPixelsStayCheap) {
    const ZmiBuilder made{.frames = std::vector(65535, ZmiFrame{300, 300}), .sharePixels = true};
    MemorySource source(made.Build());
    ASSERT_EQ(VerdictOf(source), Verdict::Loads);
    EXPECT_LT(source.Calls(), 60u);
    EXPECT_EQ(source.Reads(), Bytes(source.Reads().size(), 1));
}

} // namespace vantrel::tests
