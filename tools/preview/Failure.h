// The one error of the preview host: words for the user and the HRESULT behind them.
#pragma once

#include <windows.h>

#include <exception>
#include <string>
#include <string_view>

namespace vantrel::tools {

class Failure : public std::exception {
public:
    explicit Failure(std::wstring message, HRESULT result = E_FAIL);

    const char* what() const noexcept override { return "a request failed"; }
    const std::wstring& Message() const { return message_; }
    HRESULT Result() const { return result_; }

private:
    std::wstring message_;
    HRESULT result_;
};

// Throws a Failure that reads "what: the result in words" for everything but S_OK: handlers say S_FALSE when
// they have no value.
void Check(HRESULT result, std::wstring_view what);

} // namespace vantrel::tools
