#include "tools/terminal/Console.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/NumberText.h"

#include <windows.h>

#include <algorithm>
#include <array>

namespace vantrel::tools {

namespace {

// Columns of the progress line now on the terminal; 0 if there is none.
std::size_t g_progressColumns = 0;

bool IsConsole(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

// False if not everything could be written; see GetLastError.
bool Write(DWORD stream, std::wstring_view text) {
    const HANDLE handle = GetStdHandle(stream);
    if (!handle)
        return true; // a process without standard handles has no reader
    DWORD written = 0;
    if (IsConsole(handle)) {
        constexpr std::size_t largestWrite = 1U << 13; // old consoles fail above 64 KB
        for (; !text.empty(); text.remove_prefix(written))
            if (!WriteConsoleW(handle, text.data(), static_cast<DWORD>(std::min(text.size(), largestWrite)),
                               &written, nullptr))
                return false;
        return true;
    }
    const std::string bytes = ToUtf8(text);
    for (std::string_view rest = bytes; !rest.empty(); rest.remove_prefix(written)) {
        SetLastError(ERROR_WRITE_FAULT); // for a write that succeeds but writes nothing
        if (!WriteFile(handle, rest.data(), static_cast<DWORD>(rest.size()), &written, nullptr) ||
            written == 0)
            return false;
    }
    return true;
}

void EraseProgress() {
    if (g_progressColumns == 0)
        return;
    Write(STD_ERROR_HANDLE, L"\r" + std::wstring(g_progressColumns, L' ') + L"\r");
    g_progressColumns = 0;
}

// East Asian characters take two columns; counting some others as two does no harm here.
std::size_t Columns(wchar_t character) {
    return character < 0x1100 ? 1 : 2;
}

} // namespace

void PrintLine(std::wstring_view text) {
    PrintText(Visible(text) + L'\n');
}

void PrintError(std::wstring_view text) {
    EraseProgress();
    Write(STD_ERROR_HANDLE, Visible(text) + L'\n');
}

void PrintText(std::wstring_view text) {
    EraseProgress();
    if (Write(STD_OUTPUT_HANDLE, text))
        return;
    const DWORD error = GetLastError();
    if (error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA || error == ERROR_PIPE_NOT_CONNECTED)
        throw Failure({}, HRESULT_FROM_WIN32(error)); // whoever read it has seen enough
    FailWithLastError(L"stdout");
}

bool IsControl(wchar_t character) {
    const auto isWithin = [character](wchar_t first, wchar_t last) {
        return character >= first && character <= last;
    };
    return character < L' ' || isWithin(0x7F, 0x9F) || character == 0x061C || isWithin(0x200E, 0x200F) ||
           isWithin(0x2028, 0x202E) || isWithin(0x2066, 0x2069);
}

std::wstring Visible(std::wstring_view text) {
    std::wstring visible;
    for (const wchar_t character : text) {
        if (!IsControl(character)) {
            visible += character;
            continue;
        }
        visible += L"<U+" + Hexadecimal(character, 4) + L'>';
    }
    return visible;
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
    item_ = Visible(item);
    percent_ = 0;
    if (watched_)
        Show();
}

void Progress::Part(std::uint64_t done, std::uint64_t total) {
    const std::uint64_t percent = total == 0 ? 0 : done * 100 / total;
    if (!watched_ || percent == percent_)
        return;
    percent_ = percent;
    Show();
}

void Progress::Show() {
    constexpr std::size_t widestLine = 78;
    std::wstring line = L"[" + std::to_wstring(done_) + L"/" + std::to_wstring(total_) + L"] ";
    if (percent_ > 0)
        line += std::to_wstring(percent_) + L"% ";
    std::size_t columns = line.size();
    for (const wchar_t character : item_) {
        if (columns + Columns(character) > widestLine)
            break;
        columns += Columns(character);
        line += character;
    }
    EraseProgress();
    Write(STD_ERROR_HANDLE, line);
    g_progressColumns = columns;
}

} // namespace vantrel::tools
