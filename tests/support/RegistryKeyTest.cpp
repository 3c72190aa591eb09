#include "support/RegistryKey.h"

#include "support/RegistrationEntry.h"
#include "support/SecurityApi.h"

#include <gtest/gtest.h>

#include <string>

namespace vantrel::tests {

// What registration does with all this is tested through the library's exports; here, what it doesn't show.
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
    BOOL present = FALSE, defaulted = FALSE;
    ACL* acl = nullptr;
    ACCESS_ALLOWED_ACE* entry = nullptr;
    {
        RegistryKey key;
        ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, base.c_str(), 0, KEY_READ, key.Put()), ERROR_SUCCESS);
        ASSERT_EQ(RegGetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, descriptor, &size), ERROR_SUCCESS);
    }
    ASSERT_TRUE(GetSecurityDescriptorDacl(descriptor, &present, &acl, &defaulted));
    ASSERT_TRUE(present && acl && acl->AceCount == 1);
    ASSERT_TRUE(GetAce(acl, 0, reinterpret_cast<void**>(&entry)));
    EXPECT_EQ(entry->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
    EXPECT_TRUE(IsWellKnownSid(&entry->SidStart, WinWorldSid));

    EXPECT_FALSE(RegistryKey::DeleteKeyTree(nullptr, base.c_str()));
    EXPECT_TRUE(RegistryKey::DeleteKeyTree(HKEY_CURRENT_USER, base.c_str()));
}

} // namespace vantrel::tests
