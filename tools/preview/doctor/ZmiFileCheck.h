// Why a ZMI file shows no picture, in words: the tool's own reading of the format, apart from the library's.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vantrel::tools {

// The first thing that is wrong with the file, in the order in which a reader meets it; empty when header,
// trailer, frame records and all ranges are sound and frame 0 can be painted; its size is then stored, in
// pixels.
std::optional<std::wstring> FindFault(const std::filesystem::path& file, unsigned* width = nullptr,
                                      unsigned* height = nullptr);

} // namespace vantrel::tools
