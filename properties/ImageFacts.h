// What the property handlers share: the keys of the properties they serve and the dimensions text.
#pragma once

#include "support/VariantHolder.h"

#include <windows.h>

#include <wtypes.h>

#include <cstdint>

namespace vantrel {

// As in the Windows SDK's propkey.h; mingw-w64's lacks the image properties.
inline constexpr PROPERTYKEY PKEY_Title = {
    {0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}}, 2};
inline constexpr GUID imageFormatId = {
    0x6444048F, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
inline constexpr PROPERTYKEY PKEY_Image_Dimensions = {imageFormatId, 13};
inline constexpr PROPERTYKEY PKEY_Image_BitDepth = {imageFormatId, 7};

// "640 x 480" as a VT_BSTR; dimensions holds width and height in pixels. Throws _com_error when out of
// memory.
void AssignDimensions(VariantHolder& value, const std::uint32_t (&dimensions)[2]);

} // namespace vantrel
