#include "support/RegistryKey.h"

#include "support/SecurityApi.h"

#include <cwchar>
#include <iterator>
#include <limits>

namespace vantrel {

namespace {

using KeyName = wchar_t[MAX_PATH];

bool FindFirstSubkey(HKEY key, KeyName& name) {
    DWORD length = MAX_PATH;
    return RegEnumKeyExW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

DWORD CountSubkeys(HKEY key) {
    DWORD count = 0;
    RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr);
    return count;
}

// Deletes everything below a key. The stack is limited, so all levels share one name: it may be keyPath
// itself, and is lost.
bool DeleteSubkeys(HKEY root, const wchar_t* keyPath, KeyName& name, unsigned depth) {
    // No key lies deeper than this, so it is a cycle of links.
    constexpr unsigned mostLevels = 512;
    if (depth > mostLevels)
        return false;
    {
        // If the key's security can't be changed, deletion is tried with the existing rights.
        SecurityApi api;
        GrantEveryoneFullAccess(api, root, keyPath);
    }
    RegistryKey key;
    if (RegCreateKeyW(root, keyPath, key.Put()) != ERROR_SUCCESS)
        return false;
    DWORD left = std::numeric_limits<DWORD>::max();
    while (FindFirstSubkey(key.Get(), name)) {
        // Each pass removes a subkey, unless it is a link.
        const DWORD count = CountSubkeys(key.Get());
        if (count >= left)
            return false;
        left = count;
        if (!DeleteSubkeys(key.Get(), name, name, depth + 1) || !FindFirstSubkey(key.Get(), name) ||
            RegDeleteKeyW(key.Get(), name) != ERROR_SUCCESS)
            return false;
    }
    return true;
}

} // namespace

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
    KeyName name;
    return DeleteSubkeys(root, keyPath, name, 0) && RegDeleteKeyW(root, keyPath) == ERROR_SUCCESS;
}

} // namespace vantrel
