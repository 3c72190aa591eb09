#include "render/RenderImage.h"

#include "tests/host/ScratchFile.h"
#include "tests/host/TestStream.h"

namespace vantrel::tests {

// No handler passes both.
TEST(RenderImage, AStreamComesBeforeAPath) {
    const ScratchFile scratch(ZmiBuilder{.frames = {{3, 4}}}.Build());
    TestStream stream(ZmiBuilder{.frames = {{5, 6}}}.Build());
    TestStream garbage(Bytes(500, 'z'));
    std::uint32_t dimensions[2] = {};
    EXPECT_TRUE(RenderImage({.path = scratch.Path(), .stream = &stream, .dimensions = dimensions}));
    EXPECT_EQ(dimensions[0], 5u);
    EXPECT_FALSE(RenderImage({.path = scratch.Path(), .stream = &garbage, .dimensions = dimensions}));
    EXPECT_FALSE(RenderImage({.dimensions = dimensions}));
}

} // namespace vantrel::tests
