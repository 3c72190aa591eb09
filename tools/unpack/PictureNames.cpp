#include "tools/unpack/PictureNames.h"

#include <windows.h>

namespace vantrel::tools {

bool PictureNames::IgnoreCase::operator()(const std::wstring& left, const std::wstring& right) const {
    return CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_LESS_THAN;
}

std::filesystem::path PictureNames::Take(const std::wstring& stem) {
    std::wstring name = stem;
    for (unsigned number = 2; !taken_.insert(name).second; ++number)
        name = stem + L" (" + std::to_wstring(number) + L")";
    const std::filesystem::path path = folder_ / (name + L".png");
    const bool isGeneric = folder_.native().find(L'/') != std::wstring::npos;
    return isGeneric ? path.generic_wstring() : path.wstring();
}

} // namespace vantrel::tools
