#include "tools/terminal/Failure.h"

#include "tools/terminal/NumberText.h"

#include <array>
#include <cstdint>
#include <utility>

namespace vantrel::tools {

namespace {

// WIC's codes, which the system's message table lacks.
constexpr auto wicWords = std::to_array<std::pair<std::uint32_t, const wchar_t*>>({
    {0x88982F07, L"the picture is damaged or cut short"},
    {0x88982F0B, L"the picture's format version is not supported"},
    {0x88982F44, L"the picture has no such frame"},
    {0x88982F50, L"not a picture format that this system can read"},
    {0x88982F51, L"the picture is too large"},
    {0x88982F60, L"the picture is damaged or cut short"},
    {0x88982F61, L"the picture is damaged or cut short"},
    {0x88982F62, L"the picture has no frame"},
    {0x88982F72, L"the picture is damaged or cut short"},
    {0x88982F80, L"the picture's pixel format is not supported"},
    {0x88982F81, L"the picture format does not support this"},
});

} // namespace

void Check(HRESULT result, std::wstring_view what) {
    if (result == S_OK)
        return;
    const std::wstring words = result == S_FALSE ? L"no value (S_FALSE)" : DescribeHresult(result);
    throw Failure(std::wstring(what) + L": " + words, result);
}

void FailWithLastError(std::wstring_view what) {
    const HRESULT result = HRESULT_FROM_WIN32(GetLastError());
    throw Failure(std::wstring(what) + L": " + DescribeHresult(result), result);
}

std::wstring DescribeHresult(HRESULT result) {
    const auto code = static_cast<std::uint32_t>(result);
    std::array<wchar_t, 512> buffer{};
    std::wstring words;
    for (const auto& [known, text] : wicWords)
        if (known == code)
            words = text;
    if (words.empty()) {
        const DWORD length =
            FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                           buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
        words.assign(buffer.data(), length);
        while (!words.empty() && (words.back() <= L' ' || words.back() == L'.'))
            words.pop_back();
    }
    if (words.empty())
        words = L"unknown error";
    return words + L" (0x" + Hexadecimal(code, 8) + L')';
}

} // namespace vantrel::tools
