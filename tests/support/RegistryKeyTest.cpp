#include "support/RegistryKey.h"

#include "support/RegistrationEntry.h"
#include "support/SecurityApi.h"

#include <gtest/gtest.h>
#include <sddl.h>

#include <deque>
#include <regex>
#include <string>

namespace vantrel::tests {

// Registration is tested through the library's exports; this covers what it doesn't exercise.
TEST(RegistryKey, SaysWhatItCouldNotDo) {
    const std::wstring base = L"Software\\unit-" + std::to_wstring(GetCurrentProcessId());
    EXPECT_EQ(WriteStringValue({HKEY_CURRENT_USER, base.c_str(), L"InfoTip", L"x"}), S_OK);
    for (const std::wstring& path : {std::wstring(L"InfoTip"), base + L"\\none", base + L"\\none\\InfoTip"})
        EXPECT_FALSE(RegistryKey::DeleteValueByPath(HKEY_CURRENT_USER, path.c_str()));
    EXPECT_TRUE(RegistryKey::DeleteValueByPath(HKEY_CURRENT_USER, (base + L"\\InfoTip").c_str()));
    for (const std::size_t length : {MAX_PATH - 1, MAX_PATH}) {
        const std::wstring name(length - base.size() - 1, L'x');
        EXPECT_EQ(WriteStringValue({HKEY_CURRENT_USER, base.c_str(), name.c_str(), L"x"}), S_OK);
        EXPECT_EQ(RegistryKey::DeleteValueByPath(HKEY_CURRENT_USER, (base + L'\\' + name).c_str()),
                  length < MAX_PATH);
    }

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

// The registry's deepest tree, deleted on a small stack.
TEST(RegistryKey, DeletesFiveHundredLevels) {
    const auto deleteDeepTree = [](void*) -> DWORD {
        const std::wstring base = L"Software\\unit-deep-" + std::to_wstring(GetCurrentProcessId());
        std::deque<RegistryKey> keys(1);
        LSTATUS status = RegCreateKeyW(HKEY_CURRENT_USER, base.c_str(), keys.back().Put());
        while (status == ERROR_SUCCESS && keys.size() < 500) {
            const HKEY last = keys.back().Get();
            status = RegCreateKeyW(last, L"below", keys.emplace_back().Put());
        }
        keys.clear();
        if (status != ERROR_SUCCESS)
            return FALSE;
        return RegistryKey::DeleteKeyTree(HKEY_CURRENT_USER, base.c_str());
    };
    const UniqueKernelHandle thread(CreateThread(nullptr, 256 * 1024, deleteDeepTree, nullptr,
                                                 STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
    DWORD deleted = FALSE;
    ASSERT_EQ(WaitForSingleObject(thread.get(), 60'000), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeThread(thread.get(), &deleted));
    EXPECT_EQ(deleted, DWORD{TRUE});
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
