// The module's COM classes: their identifiers, as text and as numbers, and the table that creates their
// objects.
#pragma once

#include <windows.h>

#include <objbase.h>

namespace vantrel {

// The text is exactly what the registry holds.
inline constexpr wchar_t thumbnailProviderId[] = L"{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}";
inline constexpr wchar_t extractImageHandlerId[] = L"{C46E1B3A-92F7-4d05-A1E8-7B3D5F92C0A6}";
inline constexpr wchar_t iconHandlerId[] = L"{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}";
inline constexpr wchar_t columnProviderId[] = L"{A8D4E2F1-37C9-4b6a-8E05-91F2C6D7A3B4}";
inline constexpr wchar_t propertyStoreId[] = L"{3F1C9A42-6B0D-4e57-9A21-5C8E7D40B613}";

// Creates an object of one class and returns the requested interface; see CreateObject.
using CreateInstanceFn = HRESULT (*)(REFIID iid, void** object);

// Null when the class is not one of the module's.
CreateInstanceFn FindCreator(REFCLSID classId);

} // namespace vantrel
