#include "support/TextBuffer.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace vantrel::tests {

namespace {

void ExpectText(const TextBuffer& text, const std::wstring& expected, std::size_t capacity = 260) {
    ASSERT_NE(text.Buffer(), nullptr);
    EXPECT_TRUE(std::wstring(text.Buffer()) == expected);
    EXPECT_EQ(text.Length(), expected.size() + 1);
    EXPECT_EQ(text.Capacity(), capacity);
}

} // namespace

TEST(TextBuffer, FormatGrowsInSteps) {
    const struct {
        std::size_t length, capacity;
    } cases[] = {{1, 260}, {258, 260}, {259, 260}, {260, 520}, {519, 520}, {520, 780}, {5000, 5200}};
    for (const auto& [length, capacity] : cases) {
        TextBuffer text;
        ExpectText(text, L"");
        const std::wstring start(length - 1, L'x');
        EXPECT_TRUE(text.Format(L"%ls%u", start.c_str(), 7)) << length;
        ExpectText(text, start + L'7', capacity);
    }
}

TEST(TextBuffer, FormatGivesUpAtItsLimit) {
    constexpr std::size_t limit = 3145728;
    const struct {
        std::size_t capacity; // before
        std::size_t length;
        bool fits;
    } cases[] = {
        {limit - 1, limit - 2 + 260, true}, // below the limit: grows once more
        {limit - 1, limit - 1 + 260, false},
        {limit, limit - 1, true},
        {limit, limit, false},
    };
    for (const auto& [capacity, length, fits] : cases) {
        TextBuffer text;
        ASSERT_TRUE(text.AssignWide(std::wstring(capacity - 1, L'-').c_str()));
        EXPECT_EQ(text.Format(L"%ls", std::wstring(length, L'x').c_str()), fits) << length;
        EXPECT_EQ(text.Length(), fits ? length + 1 : 1);
    }
}

TEST(TextBuffer, AssigningGrowsToWhatIsNeeded) {
    const struct {
        std::size_t count, capacity;
    } cases[] = {{0, 260}, {5, 260}, {259, 260}, {260, 261}, {1000, 1001}};
    for (const auto& [count, capacity] : cases) {
        TextBuffer text;
        EXPECT_TRUE(text.AssignWide(std::wstring(count, L'\u03B6').c_str()));
        ExpectText(text, std::wstring(count, L'\u03B6'), capacity);
        EXPECT_TRUE(text.AssignWide(L"ab\0cd", 5)); // the text ends at its first zero
        ExpectText(text, L"ab", capacity);
        EXPECT_TRUE(text.AssignWide(nullptr, 7));
        ExpectText(text, L"", capacity);
        for (const auto widening : {TextBuffer::Widening::ByValue, TextBuffer::Widening::AnsiCodePage}) {
            TextBuffer narrow;
            EXPECT_TRUE(narrow.AssignNarrow(std::string(2000, 'n').c_str(), count, widening));
            ExpectText(narrow, std::wstring(count, L'n'), capacity);
        }
    }
}

TEST(TextBuffer, WidensByValueOrByCodePage) {
    std::string all;
    std::wstring byValue, byCodePage(255, L' ');
    for (int i = 1; i < 256; ++i) {
        all += static_cast<char>(i);
        byValue += static_cast<wchar_t>(i);
    }
    byCodePage.resize(
        static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, all.data(), 255, byCodePage.data(), 255)));
    ASSERT_TRUE(byCodePage != byValue) << "the code page has to be a telling one";

    TextBuffer text;
    EXPECT_TRUE(text.AssignNarrow(all.data(), all.size(), TextBuffer::Widening::ByValue));
    ExpectText(text, byValue);
    EXPECT_TRUE(text.AssignNarrow(all.c_str()));
    ExpectText(text, byCodePage);
}

TEST(TextBuffer, RefusedGrowthLeavesTheEmptyText) {
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    for (const std::size_t count : {most, most - 1, most / 2, most / 16}) {
        TextBuffer text;
        text.AssignWide(std::wstring(300, L'x').c_str());
        EXPECT_FALSE(text.AssignWide(L"", count));
        ExpectText(text, L"");
        EXPECT_TRUE(text.AssignWide(L"usable"));
        EXPECT_FALSE(text.AssignNarrow("", count, TextBuffer::Widening::ByValue));
        ExpectText(text, L"");
    }
}

} // namespace vantrel::tests
