// File names compared as Windows compares them.
#pragma once

#include <filesystem>
#include <string_view>

namespace vantrel::tools {

// Negative, zero or positive, without regard to case or language.
int CompareNames(std::wstring_view left, std::wstring_view right);

// The order of such names in a container.
struct NameOrder {
    bool operator()(std::wstring_view one, std::wstring_view other) const {
        return CompareNames(one, other) < 0;
    }
};

// The extension with its dot.
bool HasExtension(const std::filesystem::path& file, std::wstring_view extension);

} // namespace vantrel::tools
