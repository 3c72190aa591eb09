// The real registry in tests that change what is registered there.
#pragma once

#include <windows.h>

#include <cstdint>
#include <list>
#include <string>

namespace vantrel::tests {

// A key with everything below it: restored on destruction.
class KeptKey {
public:
    KeptKey(HKEY root, const std::wstring& path)
        : root_(root), path_(path), existed_(Copy(root, path_, HKEY_CURRENT_USER, copy_)) {}
    KeptKey(const KeptKey&) = delete;
    KeptKey& operator=(const KeptKey&) = delete;
    ~KeptKey() {
        RegDeleteTreeW(root_, path_.c_str());
        if (existed_)
            Copy(HKEY_CURRENT_USER, copy_, root_, path_);
        RegDeleteTreeW(HKEY_CURRENT_USER, copy_.c_str());
    }

private:
    static bool Copy(HKEY fromRoot, const std::wstring& from, HKEY toRoot, const std::wstring& to) {
        HKEY source = nullptr;
        HKEY target = nullptr;
        const bool copied = RegOpenKeyExW(fromRoot, from.c_str(), 0, KEY_READ, &source) == ERROR_SUCCESS &&
                            RegCreateKeyExW(toRoot, to.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                            &target, nullptr) == ERROR_SUCCESS &&
                            RegCopyTreeW(source, nullptr, target) == ERROR_SUCCESS;
        for (const HKEY key : {source, target})
            RegCloseKey(key);
        return copied;
    }

    HKEY root_;
    std::wstring path_;
    std::wstring copy_ = L"Software\\Vantrel64 tests " + std::to_wstring(GetCurrentProcessId()) + L' ' +
                         std::to_wstring(reinterpret_cast<std::uintptr_t>(this));
    bool existed_;
};

// Everything that registration writes.
class KeptRegistration {
public:
    KeptRegistration() {
        const std::wstring classes = LR"(Software\Classes\)";
        for (const wchar_t* id :
             {L"{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}", L"{C46E1B3A-92F7-4d05-A1E8-7B3D5F92C0A6}",
              L"{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}", L"{A8D4E2F1-37C9-4b6a-8E05-91F2C6D7A3B4}",
              L"{3F1C9A42-6B0D-4e57-9A21-5C8E7D40B613}"}) {
            keys_.emplace_back(HKEY_CURRENT_USER, classes + LR"(CLSID\)" + id);
            keys_.emplace_back(HKEY_CURRENT_USER, classes + LR"(Folder\ShellEx\ColumnHandlers\)" + id);
        }
        keys_.emplace_back(HKEY_CURRENT_USER, classes + L".zmi");
        keys_.emplace_back(
            HKEY_LOCAL_MACHINE,
            LR"(Software\Microsoft\Windows\CurrentVersion\PropertySystem\PropertyHandlers\.zmi)");
    }

private:
    std::list<KeptKey> keys_;
};

// Whether this process may write what belongs to all users.
inline bool IsAdministrator() {
    HKEY key = nullptr;
    const LSTATUS status = RegOpenKeyExW(HKEY_LOCAL_MACHINE, LR"(Software\Microsoft\Windows\CurrentVersion)",
                                         0, KEY_WRITE, &key);
    RegCloseKey(key);
    return status == ERROR_SUCCESS;
}

} // namespace vantrel::tests
