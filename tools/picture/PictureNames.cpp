#include "tools/picture/PictureNames.h"

#include "tools/terminal/LongPath.h"

namespace vantrel::tools {

void PictureNames::Reserve(const std::filesystem::path& file) {
    taken_.insert(LongPath(file));
}

std::filesystem::path PictureNames::Take(const std::wstring& stem) {
    std::filesystem::path path = folder_ / (stem + extension_);
    for (unsigned number = 2; !taken_.insert(LongPath(path)).second; ++number)
        path = folder_ / (stem + L" (" + std::to_wstring(number) + L")" + extension_);
    const bool isGeneric = folder_.native().find(L'/') != std::wstring::npos;
    return isGeneric ? path.generic_wstring() : path.wstring();
}

} // namespace vantrel::tools
