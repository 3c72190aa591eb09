// The answer to "why do I see no thumbnails?": everything on this machine that could be the reason.
#pragma once

#include "tools/terminal/JsonDocument.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::tools {

// Prints one line per finding, or a list of them in the document. A given library is the one that should be
// registered; the arguments are files and folders. False when something failed.
bool RunDoctor(const std::optional<std::filesystem::path>& library,
               const std::vector<std::wstring>& arguments, JsonDocument* json);

} // namespace vantrel::tools
