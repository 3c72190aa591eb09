// The options of zmi-preview.
#pragma once

#include "tools/terminal/CommandLine.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace vantrel::tools {

struct PreviewOptions {
    std::optional<std::vector<unsigned>> sizes; // edges of thumbnails in pixels, without duplicates
    std::optional<std::filesystem::path> out;
    std::optional<std::filesystem::path> sheet;
    std::optional<std::filesystem::path> dll; // absolute
    bool force = false;
    bool doctor = false;
    Arguments inputs;
};

// Throws UsageError.
PreviewOptions ParsePreviewOptions(const Arguments& arguments);

extern const std::wstring_view previewHelp;

} // namespace vantrel::tools
