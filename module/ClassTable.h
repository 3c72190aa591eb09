// The table of the module's COM classes.
#pragma once

#include <windows.h>

#include <objbase.h>

namespace vantrel {

// Makes an object of one class and hands out the interface asked for; see CreateObject.
using CreateInstanceFn = HRESULT (*)(REFIID iid, void** object);

struct ClassRow {
    const CLSID* classId;
    CreateInstanceFn create;
};

inline constexpr CLSID thumbnailProviderClassId = {
    0xE1A95D7C, 0x0B48, 0x4C63, {0x9F, 0x1D, 0x2A, 0x6B, 0x8C, 0x04, 0xE7, 0x9F}};

// Null when the class is not one of the module's.
const ClassRow* FindClass(REFCLSID classId);

} // namespace vantrel
