// File names compared as Windows compares them.
#pragma once

#include <filesystem>
#include <string_view>

namespace vantrel::tools {

// Negative, zero or positive, without regard to case or language.
int CompareNames(std::wstring_view left, std::wstring_view right);

// The extension with its dot.
bool HasExtension(const std::filesystem::path& file, std::wstring_view extension);

} // namespace vantrel::tools
