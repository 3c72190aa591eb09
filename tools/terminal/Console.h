// What the tools say: UTF-8 text on stdout and stderr, and a progress line where a person is watching.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vantrel::tools {

// Each writes one line, to stdout or to stderr. Control characters in the text are made visible: names and
// titles come out of other people's files. A console gets UTF-16, a pipe or a file gets UTF-8. Throws Failure
// when stdout does not take all of it; what stderr does not take is lost.
void PrintLine(std::wstring_view text);
void PrintError(std::wstring_view text);
// Writes to stdout as it is what no file had a say in. Throws as PrintLine does.
void PrintText(std::wstring_view text);

// What a terminal would not show but obey: C0 and C1 controls, line and paragraph separators, and the marks
// that turn the direction of text around.
bool IsControl(wchar_t character);
// The text with <U+001B> and so on in the place of each of them.
std::wstring Visible(std::wstring_view text);

// UTF-16 to UTF-8. Lone surrogates become U+FFFD.
std::string ToUtf8(std::wstring_view text);

// True when stderr is a terminal. The progress line goes there, so that stdout stays clean for pipes. Under
// Wine a terminal of the host system counts when the launching script says so (environment VANTREL_TTY=1).
bool IsWatched();

// One line on stderr, rewritten in place, that shows how far a run of known length has come. Silent when
// nobody is watching; erases itself at the end, and while something is printed.
class Progress {
public:
    explicit Progress(std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Counts one more item and names it, as the one that is being worked on.
    void Step(std::wstring_view item);
    // How far the item is, in any unit. May be called often.
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
