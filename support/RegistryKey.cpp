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
    return DeleteKeyTree(root, keyPath, 0);
}

BOOL RegistryKey::DeleteKeyTree(HKEY root, const wchar_t* keyPath, unsigned depth) {
    // This deep it is almost certainly a cycle of links, and the stack is limited.
    constexpr unsigned mostLevels = 128;
    if (depth > mostLevels)
        return FALSE;
    {
        // If the key's security can't be changed, deletion is tried with the existing rights.
        SecurityApi api;
        GrantEveryoneFullAccess(api, root, keyPath);
    }
    RegistryKey key;
    if (RegCreateKeyW(root, keyPath, key.Put()) != ERROR_SUCCESS)
        return FALSE;
    wchar_t name[MAX_PATH];
    wchar_t previous[MAX_PATH] = L"";
    DWORD length = std::size(name);
    // Always the first subkey: each pass removes the one it found, unless that is a link.
    while (RegEnumKeyExW(key.Get(), 0, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS) {
        if (std::wcscmp(name, previous) == 0 || !DeleteKeyTree(key.Get(), name, depth + 1))
            return FALSE;
        std::wcscpy(previous, name);
        length = std::size(name);
    }
    key.Close();
    return RegDeleteKeyW(root, keyPath) == ERROR_SUCCESS;
}

} // namespace vantrel
