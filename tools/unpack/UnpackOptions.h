// The options of zmi-unpack.
#pragma once

#include "tools/terminal/CommandLine.h"
#include "tools/unpack/FrameList.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::tools {

struct UnpackOptions {
    std::vector<std::wstring> inputs; // as typed: files, patterns and folders
    FrameList frames;
    std::optional<std::filesystem::path> out;
    std::optional<std::filesystem::path> gif;
    std::optional<unsigned> delay; // of the GIF's frames, in milliseconds
    bool info = false;
    bool force = false;
};

extern const std::wstring_view unpackHelp;

// Throws UsageError.
UnpackOptions ParseUnpackOptions(CommandLine& line);

} // namespace vantrel::tools
