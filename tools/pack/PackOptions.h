// What the user asks of zmi-pack.
#pragma once

#include "tools/pack/Rgb565.h"
#include "tools/pack/ZmiFormat.h"
#include "tools/terminal/CommandLine.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::tools {

struct PackOptions {
    zmi::PixelMode mode = zmi::PixelMode::Rgb565;
    std::string title; // in the ANSI code page
    std::optional<Color> transparent;
    bool dither = true;
    std::vector<std::filesystem::path> inputs; // none: the blank default picture
    std::filesystem::path output;
};

// Throws UsageError.
PackOptions ParsePackOptions(CommandLine& line);

extern const std::wstring_view packHelp;

} // namespace vantrel::tools
