#include "codec/FileWindow.h"

#include "tests/builder/MemorySource.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vantrel::tests {

namespace {

Bytes Numbered(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = PatternByte(2, i);
    return bytes;
}

// Whether each byte from begin to end has been read that often.
bool ReadEach(const MemorySource& source, std::size_t begin, std::size_t end, unsigned times) {
    return std::all_of(source.Reads().begin() + static_cast<std::ptrdiff_t>(begin),
                       source.Reads().begin() + static_cast<std::ptrdiff_t>(end),
                       [times](unsigned reads) { return reads == times; });
}

} // namespace

TEST(FileWindow, ShowsConsecutiveBytesWhateverTheirLengthAndReadsThemOnce) {
    const Bytes bytes = Numbered(400000);
    // One that divides the window, some that straddle its end, one that is longer than it.
    for (const std::uint32_t count : {1024u, 1000u, 65535u, 131070u}) {
        MemorySource source(bytes);
        FileWindow window(source);
        std::size_t at = 167;
        for (; at + count <= bytes.size(); at += count) {
            const std::uint8_t* const view = window.View(static_cast<std::int64_t>(at), count);
            ASSERT_NE(view, nullptr) << at;
            ASSERT_EQ(std::memcmp(view, bytes.data() + at, count), 0) << count << " bytes at " << at;
        }
        EXPECT_EQ(window.View(static_cast<std::int64_t>(at), count), nullptr) << "beyond the end";
        EXPECT_TRUE(ReadEach(source, 167, at, 1));
        EXPECT_LE(source.Calls(), 10u);
    }
}

TEST(FileWindow, CopiesAnyBytesAndStaysWhereItIs) {
    const Bytes bytes = Numbered(200000);
    MemorySource source(bytes);
    FileWindow window(source);
    ASSERT_NE(window.View(10, 1), nullptr);
    const std::size_t calls = source.Calls();
    // Within the window, across its end, behind it and before it.
    for (const auto& [offset, count] :
         {std::pair<std::uint32_t, std::uint32_t>{20, 500}, {65000, 3000}, {150000, 4}, {0, 5}}) {
        Bytes copy(count);
        ASSERT_TRUE(window.Read(offset, copy.data(), count));
        EXPECT_EQ(std::memcmp(copy.data(), bytes.data() + offset, count), 0) << offset;
    }
    EXPECT_EQ(source.Calls(), calls + 3);
    EXPECT_TRUE(ReadEach(source, 0, 5, 1) && ReadEach(source, 10, 68000, 1));
    EXPECT_EQ(std::memcmp(window.View(30, 1000), bytes.data() + 30, 1000), 0);
    EXPECT_EQ(source.Calls(), calls + 3) << "the window has moved";

    ASSERT_TRUE(window.ReadRest(0, 190000));
    EXPECT_TRUE(ReadEach(source, 0, 190000, 1) && ReadEach(source, 190000, 200000, 0));
    EXPECT_EQ(std::memcmp(window.View(30, 1000), bytes.data() + 30, 1000), 0);
    std::uint8_t byte;
    EXPECT_FALSE(window.Read(-1, &byte, 1));
    EXPECT_EQ(window.View(-1, 1), nullptr);
}

TEST(FileWindow, ReadsTheRestOfAFileThatNobodyHasLookedAt) {
    MemorySource source(Numbered(150000));
    FileWindow window(source);
    EXPECT_TRUE(window.ReadRest(10, 140000));
    EXPECT_TRUE(ReadEach(source, 10, 140000, 1));
    EXPECT_FALSE(window.ReadRest(140000, 150001));
}

TEST(FileWindow, ShowsNothingThatCouldNotBeRead) {
    const Bytes bytes = Numbered(100000);
    for (const std::size_t failingCall : {2u, 3u}) {
        MemorySource source(bytes);
        source.failingCall = failingCall;
        FileWindow window(source);
        EXPECT_EQ(window.View(0, 60000) == nullptr, failingCall == 2);
        EXPECT_EQ(window.View(30000, 50000) == nullptr, failingCall == 3);
        const std::uint8_t* const again = window.View(30000, 50000);
        ASSERT_NE(again, nullptr);
        EXPECT_EQ(std::memcmp(again, bytes.data() + 30000, 50000), 0);
    }
}

} // namespace vantrel::tests
