// The options of zmi-unpack.
#pragma once

#include "tools/terminal/CommandLine.h"
#include "tools/unpack/FrameList.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace vantrel::tools {

struct UnpackOptions {
    Arguments inputs; // as typed: files, patterns and folders
    FrameList frames;
    std::optional<std::filesystem::path> out;
    std::optional<std::filesystem::path> gif;
    std::optional<unsigned> delay; // of the GIF's frames, in milliseconds
    bool info = false;
    bool force = false;
};

extern const std::wstring_view unpackHelp;

// Throws UsageError.
UnpackOptions ParseUnpackOptions(const Arguments& arguments);

} // namespace vantrel::tools
