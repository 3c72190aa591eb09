#include "tools/terminal/Console.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <cwchar>
#include <iterator>
#include <utility>

namespace vantrel::tools {

namespace {

// Columns of the progress line that stand on the terminal now; 0 when there is none.
std::size_t g_progressColumns = 0;

bool IsConsole(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

// What cannot be written (a closed pipe, a full disk behind a redirection) is lost in silence: there is no
// better place left to say so.
void Write(DWORD stream, std::wstring_view text) {
    const HANDLE handle = GetStdHandle(stream);
    DWORD written = 0;
    if (IsConsole(handle)) {
        WriteConsoleW(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        return;
    }
    const std::string bytes = ToUtf8(text);
    std::string_view rest = bytes;
    while (!rest.empty() &&
           WriteFile(handle, rest.data(), static_cast<DWORD>(rest.size()), &written, nullptr) != 0 &&
           written > 0)
        rest.remove_prefix(written);
}

void EraseProgress() {
    if (g_progressColumns == 0)
        return;
    Write(STD_ERROR_HANDLE, L"\r" + std::wstring(g_progressColumns, L' ') + L"\r");
    g_progressColumns = 0;
}

// East Asian characters take two columns; counting some others so as well does no harm here.
std::size_t Columns(wchar_t character) {
    return character < 0x1100 ? 1 : 2;
}

// WIC's own codes, for which the system's message table has no words.
constexpr auto wicWords = std::to_array<std::pair<std::uint32_t, const wchar_t*>>({
    {0x88982F07, L"not a picture of a kind that this system can read"},
    {0x88982F0B, L"the picture's format version is not supported"},
    {0x88982F44, L"the picture has no such frame"},
    {0x88982F50, L"not a picture of a kind that this system can read"},
    {0x88982F51, L"the picture is too large"},
    {0x88982F60, L"the picture is damaged"},
    {0x88982F61, L"the picture's header is damaged"},
    {0x88982F62, L"the picture has no frame"},
    {0x88982F72, L"the picture is cut short"},
    {0x88982F80, L"the picture's pixel format is not supported"},
    {0x88982F81, L"the picture's kind does not support this"},
});

} // namespace

void PrintLine(std::wstring_view text) {
    EraseProgress();
    Write(STD_OUTPUT_HANDLE, std::wstring(text) + L'\n');
}

void PrintError(std::wstring_view text) {
    EraseProgress();
    Write(STD_ERROR_HANDLE, std::wstring(text) + L'\n');
}

bool IsWatched() {
    std::array<wchar_t, 4> value{};
    const DWORD length =
        GetEnvironmentVariableW(L"VANTREL_TTY", value.data(), static_cast<DWORD>(value.size()));
    return IsConsole(GetStdHandle(STD_ERROR_HANDLE)) || (length == 1 && value[0] == L'1');
}

Progress::Progress(std::size_t total) : total_(total), watched_(IsWatched()) {}

Progress::~Progress() {
    if (watched_)
        EraseProgress();
}

void Progress::Step(std::wstring_view item) {
    ++done_;
    if (!watched_)
        return;

    constexpr std::size_t widestLine = 78;
    std::wstring line = L"[" + std::to_wstring(done_) + L"/" + std::to_wstring(total_) + L"] ";
    std::size_t columns = line.size();
    for (const wchar_t character : item) {
        if (columns + Columns(character) > widestLine)
            break;
        columns += Columns(character);
        line += character;
    }
    EraseProgress();
    Write(STD_ERROR_HANDLE, line);
    g_progressColumns = columns;
}

std::string ToUtf8(std::wstring_view text) {
    if (text.empty())
        return {};
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

std::wstring DescribeHresult(long hresult) {
    const auto code = static_cast<std::uint32_t>(hresult);
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
    std::swprintf(buffer.data(), buffer.size(), L" (0x%08X)", static_cast<unsigned>(code));
    return words + buffer.data();
}

std::wstring DescribeFileError(const std::filesystem::filesystem_error& error) {
    return error.path1().wstring() + L": " + DescribeHresult(HRESULT_FROM_WIN32(error.code().value()));
}

} // namespace vantrel::tools
