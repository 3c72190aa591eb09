// The arguments of a tool, parsed one by one.
#pragma once

#include "tools/terminal/Failure.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::tools {

// Walks over "--name value", "--name=value" and plain arguments in the order given; "--" ends the options.
class CommandLine {
public:
    CommandLine(int count, wchar_t** arguments);

    // True if this option, which takes no value, is anywhere among the arguments.
    bool Has(std::wstring_view option) const;

    // The next argument: an option's name with its dashes, or a plain argument. Nothing at the end.
    std::optional<std::wstring> Next();
    // True if the current argument is an option ("--" was not seen before it).
    bool IsOption() const { return isOption_; }
    // The value of the current option. Throws UsageError if it is missing; a value that starts with a dash
    // must follow "=".
    std::wstring Value();
    // Throws a UsageError for the current option.
    [[noreturn]] void RejectOption() const;

private:
    std::vector<std::wstring> arguments_;
    std::size_t position_ = 0;
    std::wstring option_;
    std::optional<std::wstring> attachedValue_;
    bool isOption_ = false;
    bool optionsEnded_ = false;
};

// An integer within [low, high]. Throws a UsageError that names the option.
unsigned ParseNumber(std::wstring_view option, std::wstring_view text, unsigned low, unsigned high);

// The items between a list's commas; an empty text is one empty item.
std::vector<std::wstring> SplitList(std::wstring_view list);

} // namespace vantrel::tools
