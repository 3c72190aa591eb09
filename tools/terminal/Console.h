// What the tools print: UTF-8 text on stdout and stderr, and a progress line on a terminal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vantrel::tools {

// Each writes one line, to stdout or to stderr. Control characters in the text are made visible, since names
// and titles come from untrusted files. A console gets UTF-16, a pipe or a file gets UTF-8. Throws Failure if
// stdout can't be written completely, without a message if its reader is gone; errors on stderr are ignored.
void PrintLine(std::wstring_view text);
void PrintError(std::wstring_view text);
// Writes trusted text to stdout as is. Throws what PrintLine throws.
void PrintText(std::wstring_view text);

// Characters that a terminal would interpret: C0 and C1 controls, line and paragraph separators, and
// bidirectional formatting characters.
bool IsControl(wchar_t character);
// The text with each of them replaced by <U+001B> and so on.
std::wstring Visible(std::wstring_view text);

// UTF-16 to UTF-8. Lone surrogates become U+FFFD.
std::string ToUtf8(std::wstring_view text);

// True when stderr is a terminal. The progress line goes there, so that stdout stays clean for pipes. Under
// Wine the host system's terminal counts if the launching script says so (environment VANTREL_TTY=1).
bool IsWatched();

// A progress line on stderr, rewritten in place, for a known number of items. Silent unless stderr is a
// terminal; erases itself at the end, and while something is printed.
class Progress {
public:
    explicit Progress(std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Advances to the next item and shows its name.
    void Step(std::wstring_view item);
    // Progress within the item, in any unit. May be called often.
    void Part(std::uint64_t done, std::uint64_t total);

private:
    void Show();

    std::size_t total_;
    std::size_t done_ = 0;
    std::wstring item_;
    std::uint64_t percent_ = 0;
    bool watched_;
};

} // namespace vantrel::tools
