#include "codec/FrameReader.h"

#include "codec/ReadFile.h"
#include "tests/builder/FileFacts.h"
#include "tests/builder/MemorySource.h"

#include <gtest/gtest.h>

namespace vantrel::tests {

TEST(FrameReader, MarksOnlyPixelsOfTheTransparentKey) {
    const struct {
        unsigned mode;
        std::uint32_t key;
        bool isTransparent; // pixel 0x34 or 0x1234
    } cases[] = {
        {0, 0x34, false}, {1, 0x34, true}, {1, 0x134, false}, {2, 0x1234, true}, {2, 0x11234, false}};
    for (const auto& each : cases) {
        SCOPED_TRACE(testing::Message() << "mode " << each.mode << ", key " << each.key);
        const Bytes file = ZmiBuilder{.mode = each.mode,
                                      .frames = {{2, 1, Bytes{0x34, 0x12, 0x34, 0x13}}},
                                      .transparentKey = each.key}
                               .Build();
        MemorySource source(file);
        FileHeader header;
        std::optional<PayloadReader> payload;
        ASSERT_TRUE(readFile(source, zmiPictureKind, header, payload));
        FrameReader reader(*payload);
        const auto frame = reader.Frame(0);
        ASSERT_TRUE(frame);
        EXPECT_EQ(TransparentKey(frame->record).has_value(), each.isTransparent);
        std::vector<std::uint32_t> words;
        EXPECT_TRUE(reader.Convert(*frame, [&](const std::uint32_t* row) { words.assign(row, row + 2); }));
        EXPECT_EQ(words, FramePixelFacts(file, 0).Shown());
        EXPECT_EQ(words.at(0) < 0xFF000000, each.isTransparent);
    }
}

} // namespace vantrel::tests
