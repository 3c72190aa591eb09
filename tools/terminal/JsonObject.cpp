#include "tools/terminal/JsonObject.h"

#include "tools/terminal/Console.h"
#include "tools/terminal/NumberText.h"

namespace vantrel::tools {

void JsonObject::Add(std::string_view name, std::wstring_view text) {
    std::wstring value = L"\"";
    for (const wchar_t unit : text) {
        if (unit == L'"' || unit == L'\\') {
            value += L'\\';
            value += unit;
        } else if (IsControl(unit)) {
            value += L"\\u" + Hexadecimal(unit, 4);
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
