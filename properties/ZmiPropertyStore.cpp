#include "properties/ZmiPropertyStore.h"

#include "properties/ImageFacts.h"
#include "render/RenderImage.h"
#include "support/Boundary.h"

#include <iterator>

namespace vantrel {

namespace {

constexpr PROPERTYKEY servedKeys[] = {PKEY_Title, PKEY_Image_Dimensions, PKEY_Image_BitDepth};

} // namespace

HRESULT ZmiPropertyStore::GetCount(DWORD* count) noexcept {
    if (!count)
        return E_POINTER;
    *count = std::size(servedKeys);
    return S_OK;
}

HRESULT ZmiPropertyStore::GetAt(DWORD index, PROPERTYKEY* key) noexcept {
    // Intentional: beyond the last key the call succeeds as well and leaves the caller's key alone.
    if (index >= std::size(servedKeys))
        return S_OK;
    if (!key)
        return E_POINTER;
    *key = servedKeys[index];
    return S_OK;
}

HRESULT ZmiPropertyStore::GetValue(REFPROPERTYKEY key, PROPVARIANT* value) noexcept {
    if (!value)
        return E_POINTER;
    return GuardBoundary(S_FALSE, [&] { return ReadValue(key, *value); });
}

HRESULT ZmiPropertyStore::ReadValue(REFPROPERTYKEY key, PROPVARIANT& value) const {
    std::uint32_t dimensions[2];
    TextBuffer title;
    std::uint32_t bitsPerPixel;
    // Before checking the key: for an unreadable file every key gives S_FALSE.
    if (!RenderImage(
            {.stream = Stream(), .dimensions = dimensions, .text = &title, .bitsPerPixel = &bitsPerPixel}))
        return S_FALSE;

    VariantHolder holder;
    if (IsEqualPropertyKey(key, PKEY_Title))
        holder.AssignText(title.Buffer());
    else if (IsEqualPropertyKey(key, PKEY_Image_Dimensions))
        AssignDimensions(holder, dimensions);
    else if (IsEqualPropertyKey(key, PKEY_Image_BitDepth))
        holder.AssignInteger(static_cast<std::int32_t>(bitsPerPixel));
    else
        return E_UNEXPECTED;
    holder.DetachTo(&value);
    return S_OK;
}

HRESULT ZmiPropertyStore::SetValue(REFPROPERTYKEY, REFPROPVARIANT) noexcept {
    return E_UNEXPECTED;
}

HRESULT ZmiPropertyStore::Commit() noexcept {
    return E_UNEXPECTED;
}

HRESULT ZmiPropertyStore::IsPropertyWritable(REFPROPERTYKEY) noexcept {
    return S_FALSE;
}

} // namespace vantrel
