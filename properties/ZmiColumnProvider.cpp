#include "properties/ZmiColumnProvider.h"

#include "properties/ImageFacts.h"
#include "render/RenderImage.h"
#include "support/Boundary.h"

#include <commctrl.h>

#include <cwchar>

namespace vantrel {

namespace {

bool IsZmiExtension(const wchar_t* extension) {
    // Almost always an exact match, and lstrcmpiW goes through the sorting tables of the user's language.
    return std::wcscmp(extension, L".zmi") == 0 || lstrcmpiW(extension, L".zmi") == 0;
}

bool IsServed(const SHCOLUMNID& column, const SHCOLUMNDATA& item) {
    return IsEqualPropertyKey(column, PKEY_Image_Dimensions) &&
           (item.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_OFFLINE)) == 0 &&
           item.pwszExt && IsZmiExtension(item.pwszExt);
}

} // namespace

HRESULT ZmiColumnProvider::Initialize(LPCSHCOLUMNINIT) noexcept {
    return S_OK;
}

HRESULT ZmiColumnProvider::GetColumnInfo(DWORD index, SHCOLUMNINFO* info) noexcept {
    if (index != 0)
        return S_FALSE;
    if (!info)
        return E_POINTER;
    info->scid = PKEY_Image_Dimensions;
    // Intentional: the column is declared as VT_LPSTR although its values come as VT_BSTR.
    info->vt = VT_LPSTR;
    info->fmt = LVCFMT_LEFT;
    info->cChars = 32;
    info->csFlags = SHCOLSTATE_TYPE_STR | SHCOLSTATE_SLOW;
    return S_OK;
}

HRESULT ZmiColumnProvider::GetItemData(LPCSHCOLUMNID column, LPCSHCOLUMNDATA item, VARIANT* value) noexcept {
    if (!column || !item || !value)
        return E_POINTER;
    return GuardBoundary(S_FALSE, [&] {
        std::uint32_t dimensions[2];
        if (!IsServed(*column, *item) || !RenderImage({.path = item->wszFile, .dimensions = dimensions}))
            return S_FALSE;
        VariantHolder holder;
        AssignDimensions(holder, dimensions);
        holder.DetachTo(value);
        return S_OK;
    });
}

} // namespace vantrel
