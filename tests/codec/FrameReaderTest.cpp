#include "codec/FrameReader.h"

#include "codec/ReadFile.h"
#include "tests/builder/MemorySource.h"

#include <gtest/gtest.h>

namespace vantrel::tests {

namespace {

// A file's frames, each as rows of words, or no words if it has a fault. From a source that fails at a call,
// those frames that could be read.
std::vector<std::vector<std::uint32_t>> FramesOf(ByteSource& source) {
    FileHeader header;
    std::optional<PayloadReader> payload;
    if (!readFile(source, zmiPictureKind, header, payload))
        return {};
    FrameReader reader(*payload);
    std::vector<std::vector<std::uint32_t>> frames;
    for (std::uint16_t i = 0; i < reader.FrameCount(); ++i) {
        std::vector<std::uint32_t> words;
        const auto frame = reader.Frame(i);
        if (frame && frame->fault == FrameFault::None &&
            reader.Convert(*frame, [&](const std::uint32_t* row) {
                words.insert(words.end(), row, row + frame->record.width);
            }))
            frames.push_back(words);
    }
    return frames;
}

} // namespace

TEST(FrameReader, MarksOnlyPixelsOfTheTransparentKey) {
    struct Case {
        unsigned mode;
        std::uint32_t key;
        bool isTransparent; // pixel 0x34 or 0x1234
    };
    for (const auto& [mode, key, isTransparent] :
         {Case{0, 0x34, false}, {1, 0x34, true}, {1, 0x134, false}, {2, 0x1234, true}, {2, 0x11234, false}}) {
        ZmiBuilder made{
            .mode = mode, .frames = {{2, 1, Bytes{0x34, 0x12, 0x34, 0x13}}}, .transparentKey = key};
        MemorySource source(made.Build());
        const auto frames = FramesOf(source);
        ASSERT_EQ(frames.size(), 1u);
        for (unsigned x = 0; x < 2; ++x)
            EXPECT_EQ(frames[0][x], made.ExpectedPixel(x, 0) | (isTransparent && x == 0 ? 0 : 0xFF000000))
                << "mode " << mode << ", key " << key << ", x " << x;
        FrameRecord record{};
        record.transparentKey = key;
        record.flags = static_cast<std::uint8_t>(mode << 3 | 0x20);
        EXPECT_EQ(TransparentKey(record).has_value(), isTransparent) << mode << ", " << key;
    }
}

TEST(FrameReader, GivesABlankPictureNoPixelBytes) {
    MemorySource source(ZmiBuilder{}.Build());
    FileHeader header;
    std::optional<PayloadReader> payload;
    ASSERT_TRUE(readFile(source, zmiPictureKind, header, payload));
    const auto frame = FrameReader(*payload).Frame(0);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->pixelByteCount, 0u);
    EXPECT_EQ(frame->fault, FrameFault::None);
}

} // namespace vantrel::tests
