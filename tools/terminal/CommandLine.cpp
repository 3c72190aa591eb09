#include "tools/terminal/CommandLine.h"

#include <algorithm>
#include <utility>

namespace vantrel::tools {

namespace {

bool LooksLikeOption(std::wstring_view argument) {
    return argument.size() > 1 && argument.front() == L'-';
}

} // namespace

CommandLine::CommandLine(int count, wchar_t** arguments) {
    for (int i = 1; i < count; ++i)
        arguments_.emplace_back(arguments[i]);
}

bool CommandLine::Has(std::wstring_view option) const {
    const auto end = std::find(arguments_.begin(), arguments_.end(), L"--");
    return std::find(arguments_.begin(), end, option) != end;
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
    isOption_ = !optionsEnded_ && LooksLikeOption(argument);
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
    if (position_ == arguments_.size())
        throw UsageError(option_ + L" needs a value");
    // Far more likely a forgotten value than a value.
    if (LooksLikeOption(arguments_[position_]))
        throw UsageError(option_ + L" needs a value; write one that starts with a dash as " + option_ +
                         L"=VALUE");
    return arguments_[position_++];
}

void CommandLine::RejectOption() const {
    throw UsageError(L"unknown option " + option_ +
                     L"; write -- before a file whose name starts with a dash");
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
        throw UsageError(std::wstring(option) + L" needs a whole number from " + std::to_wstring(low) +
                         L" to " + std::to_wstring(high) + L", not \"" + std::wstring(text) + L"\"");
    return static_cast<unsigned>(number);
}

std::vector<std::wstring> SplitList(std::wstring_view list) {
    std::vector<std::wstring> items(1);
    for (const wchar_t character : list)
        if (character == L',')
            items.emplace_back();
        else
            items.back() += character;
    return items;
}

} // namespace vantrel::tools
