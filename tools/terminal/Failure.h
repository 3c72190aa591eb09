// The errors of a tool, in words for its user.
#pragma once

#include <windows.h>

#include <exception>
#include <string>
#include <string_view>

namespace vantrel::tools {

// Ends a tool with exit code 1 unless it is handled.
class Failure : public std::exception {
public:
    // The message names what failed, as the user typed it, and the reason. The result is the underlying
    // HRESULT.
    explicit Failure(std::wstring message, HRESULT result = E_FAIL)
        : message_(std::move(message)), result_(result) {}

    const char* what() const noexcept override { return "a tool failed"; }
    const std::wstring& Message() const { return message_; }
    HRESULT Result() const { return result_; }

private:
    std::wstring message_;
    HRESULT result_;
};

// Wrong usage: detected before any work starts, and ends the tool with exit code 2 and a pointer to --help.
class UsageError : public Failure {
public:
    explicit UsageError(std::wstring message) : Failure(std::move(message), E_INVALIDARG) {}
};

// An output that the user named and that is not written: exit code 2 as well, but --help has no answer.
class Refusal : public UsageError {
public:
    using UsageError::UsageError;
};

// Throws a Failure that reads "what: the result in words" for everything but S_OK: handlers return S_FALSE
// when they have no value.
void Check(HRESULT result, std::wstring_view what);
// The same for functions that set GetLastError.
[[noreturn]] void FailWithLastError(std::wstring_view what);

// Whether an error of GetLastError means that there is no such file.
inline bool IsAbsence(DWORD error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

// "the system's message (0x80070002)", without the system's trailing line break.
std::wstring DescribeHresult(HRESULT result);

} // namespace vantrel::tools
