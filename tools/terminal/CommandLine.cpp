#include "tools/terminal/CommandLine.h"

#include "tools/terminal/Console.h"

#include <utility>

namespace vantrel::tools {

UsageError::UsageError(std::wstring message)
    : std::runtime_error(ToUtf8(message)), message_(std::move(message)) {}

CommandLine::CommandLine(int count, wchar_t** arguments) {
    for (int i = 1; i < count; ++i)
        arguments_.emplace_back(arguments[i]);
}

std::optional<std::wstring> CommandLine::Next() {
    if (attachedValue_)
        throw UsageError(option_ + L" takes no value");
    if (position_ == arguments_.size())
        return std::nullopt;

    std::wstring argument = arguments_[position_++];
    if (!optionsEnded_ && argument == L"--") {
        optionsEnded_ = true;
        return Next();
    }
    isOption_ = !optionsEnded_ && argument.size() > 1 && argument.front() == L'-';
    if (!isOption_)
        return argument;

    if (const auto equals = argument.find(L'='); equals != std::wstring::npos) {
        attachedValue_ = argument.substr(equals + 1);
        argument.resize(equals);
    }
    option_ = argument;
    return argument;
}

std::wstring CommandLine::Value() {
    if (attachedValue_)
        return *std::exchange(attachedValue_, std::nullopt);
    // A value that looks like an option is far more often a forgotten value; "--name=--value" still passes
    // it.
    if (position_ == arguments_.size() || arguments_[position_].starts_with(L"--"))
        throw UsageError(option_ + L" needs a value");
    return arguments_[position_++];
}

unsigned ParseNumber(std::wstring_view option, std::wstring_view text, unsigned low, unsigned high) {
    unsigned long long number = 0;
    bool valid = !text.empty() && text.size() <= 10;
    for (const wchar_t digit : text) {
        valid = valid && digit >= L'0' && digit <= L'9';
        if (valid)
            number = number * 10 + static_cast<unsigned>(digit - L'0');
    }
    if (!valid || number < low || number > high)
        throw UsageError(std::wstring(option) + L" wants a whole number from " + std::to_wstring(low) +
                         L" to " + std::to_wstring(high) + L", not \"" + std::wstring(text) + L"\"");
    return static_cast<unsigned>(number);
}

} // namespace vantrel::tools
