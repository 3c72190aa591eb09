// The options of zmi-pack.
#pragma once

#include "codec/ZmiFormat.h"
#include "tools/picture/Rgb565.h"
#include "tools/terminal/CommandLine.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel::tools {

struct PackOptions {
    std::optional<PixelMode> mode;
    std::optional<std::string> title; // in the ANSI code page
    std::optional<Color> transparent;
    bool noDither = false;
    bool noRotate = false; // as an input's orientation says
    Arguments inputs;      // as typed; empty: the blank picture
    std::filesystem::path output;
    bool each = false;                        // one file per input, in the folder `out`
    std::optional<std::filesystem::path> out; // without: the current one
    bool force = false;

    // True if frames are not to be kept as they are.
    bool ChangesPictures() const { return mode || transparent || noDither || noRotate; }
};

// Throws UsageError.
PackOptions ParsePackOptions(const Arguments& arguments);

extern const std::wstring_view packHelp;

} // namespace vantrel::tools
