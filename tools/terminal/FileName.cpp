#include "tools/terminal/FileName.h"

#include <windows.h>

namespace vantrel::tools {

int CompareNames(std::wstring_view left, std::wstring_view right) {
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE) -
           CSTR_EQUAL;
}

bool HasExtension(const std::filesystem::path& file, std::wstring_view extension) {
    return CompareNames(file.extension().native(), extension) == 0;
}

} // namespace vantrel::tools
