#include "support/TextBuffer.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

namespace vantrel::tests {

namespace {

void ExpectText(const TextBuffer& text, std::wstring_view expected, std::size_t capacity = 260) {
    ASSERT_NE(text.Buffer(), nullptr);
    EXPECT_TRUE(text.Buffer() == expected);
    EXPECT_EQ(text.Length(), expected.size() + 1);
    EXPECT_EQ(text.Capacity(), capacity);
}

} // namespace

TEST(TextBuffer, FormatGrowsInSteps) {
    for (const std::size_t length : {1u, 258u, 259u, 260u, 519u, 520u, 5000u}) {
        TextBuffer text;
        ExpectText(text, L"");
        const std::wstring start(length - 1, L'x');
        EXPECT_TRUE(text.Format(L"%ls%u", start.c_str(), 7)) << length;
        ExpectText(text, start + L'7', (length / 260 + 1) * 260);
    }
}

TEST(TextBuffer, FormatGivesUpAtItsLimit) {
    constexpr std::size_t limit = 3145728;
    for (const std::size_t capacity : {limit - 1, limit}) {
        const std::size_t most = capacity < limit ? capacity + 260 : capacity; // below it, may grow once more
        for (const std::size_t length : {most - 1, most}) {
            TextBuffer text;
            ASSERT_TRUE(text.AssignWide(std::wstring(capacity - 1, L'-').c_str()));
            EXPECT_EQ(text.Format(L"%ls", std::wstring(length, L'x').c_str()), length < most) << length;
            EXPECT_EQ(text.Length(), length < most ? length + 1 : 1);
        }
    }
}

TEST(TextBuffer, AssigningGrowsToWhatIsNeeded) {
    for (const std::size_t count : {0u, 5u, 259u, 260u, 1000u}) {
        TextBuffer text, byValue, byCodePage;
        const std::size_t capacity = std::max<std::size_t>(count + 1, 260);
        EXPECT_TRUE(text.AssignWide(std::wstring(count, L'\u03B6').c_str()));
        ExpectText(text, std::wstring(count, L'\u03B6'), capacity);
        EXPECT_TRUE(text.AssignWide(L"ab\0cd", 5)); // the text ends at its first zero
        ExpectText(text, L"ab", capacity);
        EXPECT_TRUE(text.AssignWide(nullptr, 7));
        ExpectText(text, L"", capacity);
        const std::string narrow(2000, 'n');
        EXPECT_TRUE(byValue.AssignNarrow(narrow.data(), count, TextBuffer::Widening::ByValue));
        ExpectText(byValue, std::wstring(count, L'n'), capacity);
        EXPECT_TRUE(byCodePage.AssignNarrow(narrow.data(), count, TextBuffer::Widening::AnsiCodePage));
        ExpectText(byCodePage, std::wstring(count, L'n'), capacity);
    }
}

TEST(TextBuffer, WidensByValueOrByCodePage) {
    const char text[] = "\x80\xE9";
    wchar_t byCodePage[8] = {};
    MultiByteToWideChar(CP_ACP, 0, text, -1, byCodePage, 8);
    ASSERT_STRNE(byCodePage, L"\x80\xE9") << "the code page has to be a telling one";
    TextBuffer widened;
    EXPECT_TRUE(widened.AssignNarrow(text, 2, TextBuffer::Widening::ByValue));
    ExpectText(widened, L"\x80\xE9");
    EXPECT_TRUE(widened.AssignNarrow(text));
    ExpectText(widened, byCodePage);
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
