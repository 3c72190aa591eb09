// A JSON object, written member by member.
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::tools {

class JsonObject {
public:
    // Control characters are escaped, so that none reaches a terminal.
    void Add(std::string_view name, std::wstring_view text);
    void Add(std::string_view name, const wchar_t* text) { Add(name, std::wstring_view(text)); }
    void Add(std::string_view name, bool value) { AddRaw(name, value ? L"true" : L"false"); }
    template <std::integral Number>
    void Add(std::string_view name, Number value) {
        AddRaw(name, std::to_wstring(value));
    }
    void Add(std::string_view name, const JsonObject& object) { AddRaw(name, object.Text()); }
    void Add(std::string_view name, const std::vector<JsonObject>& items);

    // The members, without the braces.
    const std::wstring& Members() const { return members_; }
    // The object with its braces, on one line except for the items of lists.
    std::wstring Text() const { return L"{" + members_ + L"}"; }

private:
    void AddRaw(std::string_view name, std::wstring_view value);

    std::wstring members_;
};

} // namespace vantrel::tools
