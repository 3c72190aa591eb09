// A registry for one test, with nothing in it.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace vantrel::tests {

// During its lifetime this process's HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE are keys that are deleted with
// it. COM, the Shell and other processes see the real ones.
class ScratchRegistry {
public:
    ScratchRegistry() {
        HKEY user = nullptr, machine = nullptr;
        RegCreateKeyW(HKEY_CURRENT_USER, (name_ + L"\\User").c_str(), &user);
        RegCreateKeyW(HKEY_CURRENT_USER, (name_ + L"\\Machine").c_str(), &machine);
        EXPECT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CURRENT_USER, user));
        EXPECT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine));
        RegCloseKey(user);
        RegCloseKey(machine);
    }
    ScratchRegistry(const ScratchRegistry&) = delete;
    ScratchRegistry& operator=(const ScratchRegistry&) = delete;
    ~ScratchRegistry() {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        EXPECT_EQ(ERROR_SUCCESS, RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str()));
    }

private:
    const std::wstring name_ = L"Software\\Vantrel64 test " + std::to_wstring(GetCurrentProcessId());
};

} // namespace vantrel::tests
