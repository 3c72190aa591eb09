// What can go wrong in a tool, in words for its user.
#pragma once

#include <windows.h>

#include <exception>
#include <string>
#include <string_view>

namespace vantrel::tools {

// Ends a tool with exit code 1, unless somebody knows how to go on without what failed.
class Failure : public std::exception {
public:
    // The message names what failed, as the user typed it, and the reason. The result is the one behind it.
    explicit Failure(std::wstring message, HRESULT result = E_FAIL);

    const char* what() const noexcept override { return "a tool failed"; }
    const std::wstring& Message() const { return message_; }
    HRESULT Result() const { return result_; }

private:
    std::wstring message_;
    HRESULT result_;
};

// Wrong usage: found before any work is begun, and ends the tool with exit code 2 and a hint at --help.
class UsageError : public Failure {
public:
    explicit UsageError(std::wstring message) : Failure(std::move(message), E_INVALIDARG) {}
};

// Throws a Failure that reads "what: the result in words" for everything but S_OK: handlers say S_FALSE when
// they have no value.
void Check(HRESULT result, std::wstring_view what);
// The same for functions that leave their reason to GetLastError.
[[noreturn]] void FailWithLastError(std::wstring_view what);

// "the system's own words (0x80070002)", without the trailing line break that the system adds.
std::wstring DescribeHresult(HRESULT result);

} // namespace vantrel::tools
