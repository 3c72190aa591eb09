// The error that ends the packing of a file: an input or the output fails, which is exit code 1.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "tools/terminal/Console.h"

namespace vantrel::tools {

class PackError : public std::runtime_error {
public:
    // The message names the file and the reason in words for the user.
    explicit PackError(std::wstring message)
        : std::runtime_error(ToUtf8(message)), message_(std::move(message)) {}
    const std::wstring& Message() const { return message_; }

private:
    std::wstring message_;
};

} // namespace vantrel::tools
