// An owned registry key, and the deletion of values and key trees.
#pragma once

#include <windows.h>

namespace vantrel {

class RegistryKey {
public:
    RegistryKey() = default;
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;
    ~RegistryKey() { Close(); }

    // Null if empty.
    HKEY Get() const { return key_; }
    // For functions that store an opened key; closes the key held before.
    HKEY* Put();
    // If the system refuses to close the key, it is kept.
    void Close();

    // Deletes the value named after the last backslash from the key named before it; the path must be shorter
    // than MAX_PATH. FALSE without a backslash, or when the value can't be deleted.
    static BOOL DeleteValueByPath(HKEY root, const wchar_t* path);

    // Deletes a key and everything below it, depth first, after granting everyone access to each key. A
    // missing key is created on the way, with its missing parents, which stay. FALSE at the first key that
    // can't be deleted, such as one with a link below it.
    static BOOL DeleteKeyTree(HKEY root, const wchar_t* keyPath);

private:
    HKEY key_ = nullptr;
};

} // namespace vantrel
