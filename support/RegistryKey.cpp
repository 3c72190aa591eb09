#include "support/RegistryKey.h"

#include "support/SecurityApi.h"

#include <cwchar>
#include <iterator>

namespace vantrel {

HKEY* RegistryKey::Put() {
    Close();
    return &key_;
}

void RegistryKey::Close() {
    if (key_ && RegCloseKey(key_) == ERROR_SUCCESS)
        key_ = nullptr;
}

BOOL RegistryKey::DeleteValueByPath(HKEY root, const wchar_t* path) {
    wchar_t keyPath[MAX_PATH];
    const std::size_t length = std::wcslen(path);
    if (length >= std::size(keyPath))
        return FALSE;
    std::wmemcpy(keyPath, path, length + 1);
    wchar_t* const separator = std::wcsrchr(keyPath, L'\\');
    if (!separator)
        return FALSE;
    *separator = L'\0';
    RegistryKey key;
    return RegOpenKeyExW(root, keyPath, 0, KEY_ALL_ACCESS, key.Put()) == ERROR_SUCCESS &&
           RegDeleteValueW(key.Get(), separator + 1) == ERROR_SUCCESS;
}

BOOL RegistryKey::DeleteKeyTree(HKEY root, const wchar_t* keyPath) {
    {
        // Without the right to change the key's security the deletion is tried with the rights it has.
        SecurityApi api;
        GrantEveryoneFullAccess(api, root, keyPath);
    }
    RegistryKey key;
    if (RegCreateKeyW(root, keyPath, key.Put()) != ERROR_SUCCESS)
        return FALSE;
    wchar_t name[MAX_PATH];
    DWORD length = std::size(name);
    // Always the first subkey: each pass removes the one it found.
    while (RegEnumKeyExW(key.Get(), 0, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS) {
        if (!DeleteKeyTree(key.Get(), name))
            return FALSE;
        length = std::size(name);
    }
    key.Close();
    return RegDeleteKeyW(root, keyPath) == ERROR_SUCCESS;
}

} // namespace vantrel
