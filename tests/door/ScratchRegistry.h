// The current user's and the machine's registry, redirected to keys that vanish with their test.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace vantrel::tests {

// One line for each key ("path\") and each value ("path\name = type:size:data") below a key.
inline void ListRegistry(HKEY root, const std::wstring& path, std::set<std::wstring>& lines) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return;
    lines.insert(path + L"\\");
    wchar_t name[256];
    for (DWORD i = 0, length = 256;
         RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == 0; ++i, length = 256)
        ListRegistry(root, path.empty() ? name : path + L"\\" + name, lines);
    BYTE data[2048];
    for (DWORD i = 0, length = 256, type = 0, size = sizeof data;
         RegEnumValueW(key, i, name, &length, nullptr, &type, data, &size) == 0;
         ++i, length = 256, size = sizeof data)
        lines.insert(path + L"\\" + name + L" = " + std::to_wstring(type) + L":" + std::to_wstring(size) +
                     L":" + std::wstring(reinterpret_cast<const wchar_t*>(data), size / sizeof(wchar_t)));
    RegCloseKey(key);
}

class ScratchRegistry {
public:
    ScratchRegistry() {
        RegCreateKeyW(HKEY_CURRENT_USER, name_.c_str(), &base_);
        RegCreateKeyW(base_, L"User", &user_);
        RegCreateKeyW(base_, L"Machine", &machine_);
        EXPECT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CURRENT_USER, user_));
        EXPECT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine_));
    }
    ScratchRegistry(const ScratchRegistry&) = delete;
    ScratchRegistry& operator=(const ScratchRegistry&) = delete;
    ~ScratchRegistry() {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        for (const HKEY key : {user_, machine_, base_})
            RegCloseKey(key);
        EXPECT_EQ(ERROR_SUCCESS, RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str()));
    }

    // Everything in it; paths begin with "User" or "Machine".
    std::set<std::wstring> List() const {
        std::set<std::wstring> lines;
        ListRegistry(base_, L"", lines);
        return lines;
    }

private:
    std::wstring name_ = L"Software\\Vantrel64-door-" + std::to_wstring(GetCurrentProcessId());
    HKEY base_ = nullptr;
    HKEY user_ = nullptr;
    HKEY machine_ = nullptr;
};

} // namespace vantrel::tests
