// The options of zmi-pack.
#pragma once

#include "codec/ZmiFormat.h"
#include "tools/picture/Rgb565.h"
#include "tools/terminal/CommandLine.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::tools {

struct PackOptions {
    std::optional<PixelMode> mode;
    std::optional<std::string> title; // in the ANSI code page
    std::optional<Color> transparent;
    bool force = false;
    bool dither = true;
    bool rotate = true;                        // as an input's orientation says
    std::vector<std::filesystem::path> inputs; // as typed; empty: the blank picture
    std::filesystem::path output;
    bool each = false;                        // one file per input, in the folder `out`
    std::optional<std::filesystem::path> out; // without: the current one
    bool hasPictureOptions = false;           // any that changes what frames look like
};

// Throws UsageError.
PackOptions ParsePackOptions(CommandLine& line);

extern const std::wstring_view packHelp;

} // namespace vantrel::tools
