// One string value of the registry, as registration writes it.
#pragma once

#include <windows.h>

namespace vantrel {

struct RegistrationEntry {
    HKEY root;
    const wchar_t* subKey;
    const wchar_t* valueName; // null: the key's default value
    const wchar_t* data;
};

// Creates the key if needed and writes the value as REG_SZ, including its terminator. The first Win32 error
// as an HRESULT, or S_OK.
HRESULT WriteStringValue(const RegistrationEntry& entry);

} // namespace vantrel
