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

    // Null when none is held.
    HKEY Get() const { return key_; }
    // Where an opening function stores its key; what was held is closed first.
    HKEY* Put();
    // A key that the system refuses to close stays held.
    void Close();

    // Deletes the value named behind the last backslash from the key named before it; paths of less than
    // MAX_PATH characters. FALSE without a backslash, or when the value can't be deleted.
    static BOOL DeleteValueByPath(HKEY root, const wchar_t* path);

    // Deletes a key and everything below it, depth first, having granted everyone access to each key. A
    // missing key is created on the way, its missing parents too; they stay. FALSE at the first key that
    // can't be deleted, such as one that a link below it keeps.
    static BOOL DeleteKeyTree(HKEY root, const wchar_t* keyPath);

private:
    static BOOL DeleteKeyTree(HKEY root, const wchar_t* keyPath, unsigned depth);

    HKEY key_ = nullptr;
};

} // namespace vantrel
