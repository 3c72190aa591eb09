#include "tools/terminal/JsonObject.h"

#include "tools/terminal/Console.h"

#include <array>
#include <cwchar>

namespace vantrel::tools {

void JsonObject::Add(std::string_view name, std::wstring_view text) {
    std::wstring value = L"\"";
    for (const wchar_t unit : text) {
        if (unit == L'"' || unit == L'\\') {
            value += L'\\';
            value += unit;
        } else if (IsControl(unit)) {
            std::array<wchar_t, 8> escape{};
            std::swprintf(escape.data(), escape.size(), L"\\u%04x", static_cast<unsigned>(unit));
            value += escape.data();
        } else {
            value += unit;
        }
    }
    AddRaw(name, value + L"\"");
}

void JsonObject::Add(std::string_view name, const std::vector<JsonObject>& items) {
    std::wstring value;
    for (const JsonObject& item : items)
        value += (value.empty() ? L"\n" : L",\n") + item.Text();
    AddRaw(name, L"[" + value + L"]");
}

void JsonObject::AddRaw(std::string_view name, std::wstring_view value) {
    if (!members_.empty())
        members_ += L", ";
    members_ += L'"' + std::wstring(name.begin(), name.end()) + L"\": ";
    members_ += value;
}

} // namespace vantrel::tools
