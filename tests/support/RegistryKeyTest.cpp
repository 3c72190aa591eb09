#include "support/RegistryKey.h"

#include "support/RegistrationEntry.h"
#include "support/SecurityApi.h"

#include <gtest/gtest.h>
#include <sddl.h>

#include <regex>
#include <string>

namespace vantrel::tests {

// Registration is tested through the library's exports; this covers what it doesn't exercise.
TEST(RegistryKey, SaysWhatItCouldNotDo) {
    const std::wstring base = L"Software\\unit-" + std::to_wstring(GetCurrentProcessId());
    const std::wstring tooLong = base + L'\\' + std::wstring(MAX_PATH, L'x');
    EXPECT_EQ(WriteStringValue({HKEY_CURRENT_USER, base.c_str(), L"InfoTip", L"x"}), S_OK);
    for (const std::wstring& path :
         {std::wstring(L"InfoTip"), base + L"\\none", base + L"\\none\\InfoTip", tooLong})
        EXPECT_FALSE(RegistryKey::DeleteValueByPath(HKEY_CURRENT_USER, path.c_str()));
    EXPECT_TRUE(RegistryKey::DeleteValueByPath(HKEY_CURRENT_USER, (base + L"\\InfoTip").c_str()));

    SecurityApi api;
    EXPECT_EQ(api.MakeSecurityDescriptor(L"no such language"), nullptr);
    EXPECT_FALSE(GrantEveryoneFullAccess(api, nullptr, L"key"));
    ASSERT_TRUE(GrantEveryoneFullAccess(api, HKEY_CURRENT_USER, base.c_str()));
    alignas(8) BYTE descriptor[512];
    DWORD size = sizeof descriptor;
    wchar_t* text = nullptr;
    RegistryKey key;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, base.c_str(), 0, KEY_READ, key.Put()), ERROR_SUCCESS);
    ASSERT_EQ(RegGetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, descriptor, &size), ERROR_SUCCESS);
    ASSERT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
        descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr));
    EXPECT_TRUE(std::regex_match(text, std::wregex(LR"(D:\w*\(A;\w*;[GK]A;;;WD\))")))
        << testing::PrintToString(text);
    LocalFree(text);

    EXPECT_FALSE(RegistryKey::DeleteKeyTree(nullptr, base.c_str()));
    EXPECT_TRUE(RegistryKey::DeleteKeyTree(HKEY_CURRENT_USER, base.c_str()));
}

// A link back to the tree that is being deleted.
TEST(RegistryKey, EndsAtLinks) {
    const std::wstring base = L"Software\\unit-link-" + std::to_wstring(GetCurrentProcessId());
    const auto ntdll = [](const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name));
    };
    RegistryKey key, link;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, base.c_str(), key.Put()), ERROR_SUCCESS);
    struct {
        ULONG bytes;
        wchar_t text[1000];
    } name{};
    ULONG size = 0;
    constexpr int keyNameInformation = 3;
    ASSERT_EQ(reinterpret_cast<LONG(NTAPI*)(HANDLE, int, void*, ULONG, ULONG*)>(ntdll("NtQueryKey"))(
                  key.Get(), keyNameInformation, &name, sizeof name, &size),
              0);
    ASSERT_EQ(RegCreateKeyExW(key.Get(), L"link", 0, nullptr, REG_OPTION_CREATE_LINK | REG_OPTION_VOLATILE,
                              KEY_ALL_ACCESS, nullptr, link.Put(), nullptr),
              ERROR_SUCCESS);
    ASSERT_EQ(RegSetValueExW(link.Get(), L"SymbolicLinkValue", 0, REG_LINK,
                             reinterpret_cast<const BYTE*>(name.text), name.bytes),
              ERROR_SUCCESS);
    EXPECT_FALSE(RegistryKey::DeleteKeyTree(HKEY_CURRENT_USER, base.c_str()));
    reinterpret_cast<LONG(NTAPI*)(HANDLE)>(ntdll("NtDeleteKey"))(link.Get());
    EXPECT_TRUE(RegistryKey::DeleteKeyTree(HKEY_CURRENT_USER, base.c_str()));
}

} // namespace vantrel::tests
