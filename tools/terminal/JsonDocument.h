// The JSON document of a run, written to stdout as results come in.
#pragma once

#include "tools/terminal/JsonObject.h"

#include <string_view>

namespace vantrel::tools {

// An object with at most one list, whose items are printed as they come, followed by further members. All
// operations throw Failure if stdout can't be written.
class JsonDocument {
public:
    void BeginList(std::string_view name);
    void Append(const JsonObject& item);
    // Members printed when the document is closed.
    JsonObject& Members() { return members_; }
    // Ends the document with "ok" and, unless it is empty, "error".
    void Close(bool ok, std::wstring_view error = {});

private:
    bool hasList_ = false;
    bool hasItem_ = false;
    JsonObject members_;
};

} // namespace vantrel::tools
