// What the tools say: UTF-8 text on stdout and stderr, and a progress line where a person is watching.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace vantrel::tools {

// Writes text and a line feed to stdout, or to stderr. A console gets UTF-16, a pipe or a file gets UTF-8.
void PrintLine(std::wstring_view text);
void PrintError(std::wstring_view text);

// True when stderr is a terminal. The progress line goes there, so that stdout stays clean for pipes. Under
// Wine a terminal of the host system counts when the launching script says so (environment VANTREL_TTY=1).
bool IsWatched();

// One line on stderr, rewritten in place, that shows how far a run of known length has come. Silent when
// nobody is watching; erases itself at the end, and while PrintLine or PrintError say something.
class Progress {
public:
    explicit Progress(std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Counts one more item and names it, as the one that is being worked on.
    void Step(std::wstring_view item);

private:
    std::size_t total_;
    std::size_t done_ = 0;
    bool watched_;
};

// UTF-16 to UTF-8. Lone surrogates become U+FFFD.
std::string ToUtf8(std::wstring_view text);

// "the system's own words (0x80070002)", without the trailing line break that the system adds.
std::wstring DescribeHresult(long hresult);

// "the path: the system's own words (0x80070002)".
std::wstring DescribeFileError(const std::filesystem::filesystem_error& error);

} // namespace vantrel::tools
