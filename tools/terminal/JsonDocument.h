// The one JSON document of a run, written to stdout while the work goes on.
#pragma once

#include "tools/terminal/JsonObject.h"

#include <string_view>

namespace vantrel::tools {

// An object of at most one list, whose items are printed as they come, and of further members behind it. All
// operations throw Failure when stdout does not take the text.
class JsonDocument {
public:
    void BeginList(std::string_view name);
    void Append(const JsonObject& item);
    // Members that are printed when the document is closed.
    JsonObject& Members() { return members_; }
    // Ends the document with "ok" and, unless it is empty, "error".
    void Close(bool ok, std::wstring_view error = {});

private:
    bool hasList_ = false;
    bool hasItem_ = false;
    JsonObject members_;
};

} // namespace vantrel::tools
