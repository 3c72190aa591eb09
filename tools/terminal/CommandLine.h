// The arguments of a tool, taken apart one by one.
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

    // True when this option, one without a value, stands anywhere among the arguments.
    bool Has(std::wstring_view option) const;

    // The next argument: an option's name with its dashes, or a plain argument. Empty at the end.
    std::optional<std::wstring> Next();
    // True when the argument just given was an option ("--" was not seen before it).
    bool IsOption() const { return isOption_; }
    // The value of the option just given. Throws UsageError when it is missing; one that begins with a dash
    // is taken only behind "=".
    std::wstring Value();

private:
    std::vector<std::wstring> arguments_;
    std::size_t position_ = 0;
    std::wstring option_;
    std::optional<std::wstring> attachedValue_;
    bool isOption_ = false;
    bool optionsEnded_ = false;
};

// A whole number within [low, high]. Throws UsageError that names the option.
unsigned ParseNumber(std::wstring_view option, std::wstring_view text, unsigned low, unsigned high);

} // namespace vantrel::tools
