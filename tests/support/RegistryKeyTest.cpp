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
class RegistryKeyTest : public testing::Test {
protected:
    ~RegistryKeyTest() override { EXPECT_TRUE(RegistryKey::DeleteKeyTree(HKEY_CURRENT_USER, base.c_str())); }

    BOOL DeleteValue(const std::wstring& name) const {
        return RegistryKey::DeleteValueByPath(HKEY_CURRENT_USER, (base + L'\\' + name).c_str());
    }
    void WriteValue(const std::wstring& name) const {
        EXPECT_EQ(WriteStringValue({HKEY_CURRENT_USER, base.c_str(), name.c_str(), L"x"}), S_OK);
    }

    const std::wstring base = L"Software\\unit-" + std::to_wstring(GetCurrentProcessId());
};

TEST_F(RegistryKeyTest, DeletesAValueThatIsThere) {
    WriteValue(L"InfoTip");
    EXPECT_FALSE(RegistryKey::DeleteValueByPath(HKEY_CURRENT_USER, L"InfoTip")) << "no key is named";
    EXPECT_FALSE(DeleteValue(L"none"));
    EXPECT_FALSE(DeleteValue(L"none\\InfoTip"));
    EXPECT_TRUE(DeleteValue(L"InfoTip"));
    EXPECT_FALSE(DeleteValue(L"InfoTip"));
}

TEST_F(RegistryKeyTest, DeletesValuesByPathsBelowTheLimit) {
    for (const std::size_t length : {std::size_t{MAX_PATH} - 1, std::size_t{MAX_PATH}}) {
        const std::wstring name(length - base.size() - 1, L'x');
        WriteValue(name);
        EXPECT_EQ(DeleteValue(name), length < MAX_PATH) << length;
    }
}

TEST_F(RegistryKeyTest, FailsWithoutARootOrAKnownLanguage) {
    WriteValue(L"InfoTip");
    SecurityApi api;
    EXPECT_EQ(api.MakeSecurityDescriptor(L"no such language"), nullptr);
    EXPECT_FALSE(GrantEveryoneFullAccess(api, nullptr, L"key"));
    EXPECT_FALSE(RegistryKey::DeleteKeyTree(nullptr, base.c_str()));
}

TEST_F(RegistryKeyTest, GrantsEveryoneFullAccess) {
    SecurityApi api;
    ASSERT_TRUE(GrantEveryoneFullAccess(api, HKEY_CURRENT_USER, base.c_str()));
    alignas(8) BYTE descriptor[512];
    DWORD size = sizeof descriptor;
    wchar_t* text = nullptr;
    RegistryKey key;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, base.c_str(), 0, KEY_READ, key.Put()), ERROR_SUCCESS);
    ASSERT_EQ(RegGetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, descriptor, &size), ERROR_SUCCESS);
    ASSERT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
        descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr));
    const UniqueLocalMemory owner(text);
    EXPECT_TRUE(std::regex_match(text, std::wregex(LR"(D:\w*\(A;\w*;[GK]A;;;WD\))")))
        << testing::PrintToString(text);
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
        return status == ERROR_SUCCESS && RegistryKey::DeleteKeyTree(HKEY_CURRENT_USER, base.c_str());
    };
    const UniqueKernelHandle thread(CreateThread(nullptr, 256 * 1024, deleteDeepTree, nullptr,
                                                 STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
    DWORD deleted = 0;
    ASSERT_EQ(WaitForSingleObject(thread.get(), 60'000), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeThread(thread.get(), &deleted));
    EXPECT_EQ(deleted, 1u);
}

// A link back to the tree that is being deleted.
TEST_F(RegistryKeyTest, EndsAtLinks) {
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
}

} // namespace vantrel::tests
