#include "support/RegistrationEntry.h"

#include "support/RegistryKey.h"

#include <cwchar>

namespace vantrel {

HRESULT WriteStringValue(const RegistrationEntry& entry) {
    RegistryKey key;
    LSTATUS status = RegCreateKeyExW(entry.root, entry.subKey, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                     KEY_SET_VALUE, nullptr, key.Put(), nullptr);
    if (status == ERROR_SUCCESS) {
        const auto size = static_cast<DWORD>((std::wcslen(entry.data) + 1) * sizeof(wchar_t));
        status = RegSetValueExW(key.Get(), entry.valueName, 0, REG_SZ,
                                reinterpret_cast<const BYTE*>(entry.data), size);
    }
    return HRESULT_FROM_WIN32(status);
}

} // namespace vantrel
