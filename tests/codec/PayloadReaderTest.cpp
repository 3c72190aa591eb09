#include "codec/PayloadReader.h"

#include "tests/builder/MemorySource.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vantrel::tests {

namespace {

constexpr std::uint32_t payloadAt = 7;

Bytes Numbered(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = PatternByte(2, i);
    return bytes;
}

// Whether each byte of the payload from begin to end has been read that often.
bool ReadEach(const MemorySource& source, std::size_t begin, std::size_t end, unsigned times) {
    const auto at = source.Reads().begin() + payloadAt;
    return std::all_of(at + static_cast<std::ptrdiff_t>(begin), at + static_cast<std::ptrdiff_t>(end),
                       [times](unsigned reads) { return reads == times; });
}

} // namespace

TEST(PayloadReader, ShowsConsecutiveBytesWhateverTheirLengthAndReadsThemOnce) {
    const Bytes bytes = Numbered(400000);
    // One that divides the window, some that straddle its end, one that is longer than it.
    for (const std::uint32_t count : {1024u, 1000u, 65535u, 131070u}) {
        MemorySource source(bytes);
        PayloadReader payload(source, payloadAt, 399000);
        std::uint32_t at = 160;
        for (; at + count <= 399000; at += count) {
            const std::uint8_t* const view = payload.View(at, count);
            ASSERT_NE(view, nullptr) << at;
            ASSERT_EQ(std::memcmp(view, bytes.data() + payloadAt + at, count), 0)
                << count << " bytes at " << at;
        }
        EXPECT_EQ(payload.View(at, count), nullptr) << "beyond the end";
        EXPECT_TRUE(ReadEach(source, 160, at, 1) && ReadEach(source, 399000, bytes.size() - payloadAt, 0));
        EXPECT_LE(source.Calls(), 9u);
    }
}

TEST(PayloadReader, CopiesAnyBytesAndReadsTheRest) {
    const Bytes bytes = Numbered(200000);
    MemorySource source(bytes);
    PayloadReader payload(source, payloadAt, 190000);
    ASSERT_NE(payload.View(10, 1), nullptr);
    const std::size_t calls = source.Calls();
    // Within the window, across its end, behind it and before it.
    for (const auto& [at, count] :
         {std::pair<std::uint32_t, std::uint32_t>{20, 500}, {65000, 3000}, {150000, 4}, {0, 5}}) {
        Bytes copy(count);
        ASSERT_TRUE(payload.Read(at, copy.data(), count));
        EXPECT_EQ(std::memcmp(copy.data(), bytes.data() + payloadAt + at, count), 0) << at;
    }
    EXPECT_EQ(source.Calls(), calls + 3);
    EXPECT_EQ(std::memcmp(payload.View(30, 1000), bytes.data() + payloadAt + 30, 1000), 0);
    EXPECT_EQ(source.Calls(), calls + 3) << "the window has moved";

    ASSERT_TRUE(payload.ReadRest());
    EXPECT_TRUE(ReadEach(source, 0, 190000, 1) && ReadEach(source, 190000, 190000 + 9, 0));
    EXPECT_EQ(std::memcmp(payload.View(30, 1000), bytes.data() + payloadAt + 30, 1000), 0);
    std::uint8_t byte;
    EXPECT_FALSE(payload.Read(-1, &byte, 1));
    EXPECT_EQ(payload.View(-1, 1), nullptr);
    EXPECT_FALSE(PayloadReader(source, payloadAt, 200000).ReadRest()) << "longer than the file";
}

TEST(PayloadReader, ShowsNothingThatCouldNotBeRead) {
    const Bytes bytes = Numbered(100000);
    for (const std::size_t failingCall : {1u, 2u}) {
        MemorySource source(bytes);
        source.failingCall = failingCall;
        PayloadReader payload(source, 0, 100000);
        EXPECT_EQ(payload.View(0, 60000) == nullptr, failingCall == 1);
        EXPECT_EQ(payload.View(30000, 50000) == nullptr, failingCall == 2);
        const std::uint8_t* const again = payload.View(30000, 50000);
        ASSERT_NE(again, nullptr);
        EXPECT_EQ(std::memcmp(again, bytes.data() + 30000, 50000), 0);
    }
}

} // namespace vantrel::tests
