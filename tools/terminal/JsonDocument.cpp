#include "tools/terminal/JsonDocument.h"

#include "tools/terminal/Console.h"

namespace vantrel::tools {

void JsonDocument::BeginList(std::string_view name) {
    PrintText(L"{\"" + std::wstring(name.begin(), name.end()) + L"\": [");
    hasList_ = true;
}

void JsonDocument::Append(const JsonObject& item) {
    PrintText((hasItem_ ? L",\n" : L"\n") + item.Text());
    hasItem_ = true;
}

void JsonDocument::Close(bool ok, std::wstring_view error) {
    members_.Add("ok", ok);
    if (!error.empty())
        members_.Add("error", error);
    PrintText((hasList_ ? L"], " : L"{") + members_.Members() + L"}\n");
}

} // namespace vantrel::tools
