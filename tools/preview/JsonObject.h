// A JSON object, written member by member.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vantrel::tools {

class JsonObject {
public:
    void Add(std::string_view name, std::wstring_view text);
    void Add(std::string_view name, const wchar_t* text) { Add(name, std::wstring_view(text)); }
    void Add(std::string_view name, bool value) { AddRaw(name, value ? L"true" : L"false"); }
    void Add(std::string_view name, unsigned value) { AddRaw(name, std::to_wstring(value)); }
    void Add(std::string_view name, const std::vector<JsonObject>& items);

    // The object with its braces, on one line.
    std::wstring Text() const { return L"{" + members_ + L"}"; }

private:
    void AddRaw(std::string_view name, std::wstring_view value);

    std::wstring members_;
};

} // namespace vantrel::tools
