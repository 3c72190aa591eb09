#include "tools/terminal/CommandLine.h"

#include <algorithm>

namespace vantrel::tools {

namespace {

bool LooksLikeOption(std::wstring_view argument) {
    return argument.size() > 1 && argument.front() == L'-';
}

// The value that follows an option, if there is one. Throws UsageError.
const std::wstring& ValueOf(const std::wstring& option, Arguments::const_iterator value,
                            Arguments::const_iterator end) {
    if (value == end)
        throw UsageError(option + L" needs a value");
    // Far more likely a forgotten value than a value.
    if (LooksLikeOption(*value))
        throw UsageError(option + L" needs a value; write one that starts with a dash as " + option +
                         L"=VALUE");
    return *value;
}

} // namespace

bool HasOption(const Arguments& arguments, std::wstring_view name) {
    const auto end = std::ranges::find(arguments, L"--");
    return std::find(arguments.begin(), end, name) != end;
}

Arguments TakeOptions(const Arguments& arguments, std::initializer_list<Option> known) {
    Arguments others;
    for (auto at = arguments.begin(); at != arguments.end(); ++at) {
        if (*at == L"--") {
            others.insert(others.end(), at + 1, arguments.end());
            break;
        }
        if (!LooksLikeOption(*at)) {
            others.push_back(*at);
            continue;
        }
        const std::size_t equals = at->find(L'=');
        const bool hasValue = equals != std::wstring::npos;
        const std::wstring name = at->substr(0, equals);
        const auto option = std::ranges::find(known, name, &Option::name);
        if (option == known.end())
            throw UsageError(L"unknown option " + name +
                             L"; write -- before a file whose name starts with a dash");
        if (bool* const* flag = std::get_if<bool*>(&option->target)) {
            if (hasValue)
                throw UsageError(name + L" takes no value");
            if (*flag)
                **flag = true;
            continue;
        }
        const std::wstring value = hasValue ? at->substr(equals + 1) : ValueOf(name, ++at, arguments.end());
        if (const auto* path = std::get_if<std::optional<std::filesystem::path>*>(&option->target))
            **path = value;
        else
            std::get<std::function<void(const std::wstring&)>>(option->target)(value);
    }
    return others;
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
