// The arguments of a tool.
#pragma once

#include "tools/terminal/Failure.h"

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vantrel::tools {

using Arguments = std::vector<std::wstring>;

struct Option {
    std::wstring_view name; // with its dashes
    // A flag to set, if any; a path to store its value in; or what to do with the value.
    std::variant<bool*, std::optional<std::filesystem::path>*, std::function<void(const std::wstring&)>>
        target{};
};

// True if this option, which takes no value, is anywhere among the arguments.
bool HasOption(const Arguments& arguments, std::wstring_view name);

// Carries out "--name" and "--name=value" or "--name value" in the order given, and returns all other
// arguments; "--" ends the options. Throws UsageError for an option that is not among these, and for a value
// that is missing or not taken; one that starts with a dash must follow "=".
Arguments TakeOptions(const Arguments& arguments, std::initializer_list<Option> known);

// An integer within [low, high]. Throws a UsageError that names the option.
unsigned ParseNumber(std::wstring_view option, std::wstring_view text, unsigned low, unsigned high);

// The items between a list's commas; an empty text is one empty item.
std::vector<std::wstring> SplitList(std::wstring_view list);

} // namespace vantrel::tools
