#include "support/RegistryKey.h"

#include "support/RegistrationEntry.h"
#include "support/SecurityApi.h"

#include <gtest/gtest.h>

#include <string>

namespace vantrel::tests {

namespace {

// A key of the current user's that is gone again after the test.
class ScratchKey {
public:
    ScratchKey() : path_(L"Software\\unit-" + std::to_wstring(GetCurrentProcessId())) {
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, path_.c_str(), key_.Put()), ERROR_SUCCESS);
    }
    ScratchKey(const ScratchKey&) = delete;
    ScratchKey& operator=(const ScratchKey&) = delete;
    ~ScratchKey() { EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str()), ERROR_SUCCESS); }

    HKEY Get() const { return key_.Get(); }
    bool Has(const wchar_t* subKey) const {
        RegistryKey key;
        return RegOpenKeyExW(Get(), subKey, 0, KEY_READ, key.Put()) == ERROR_SUCCESS;
    }
    // Type and bytes of a value as they are stored; -1 when there is none.
    int TypeOf(const wchar_t* subKey, const wchar_t* name, std::wstring& data) const {
        RegistryKey key;
        RegOpenKeyExW(Get(), subKey, 0, KEY_READ, key.Put());
        DWORD type = 0, size = 0;
        if (!key.Get() || RegQueryValueExW(key.Get(), name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
            return -1;
        data.resize(size / sizeof(wchar_t));
        RegQueryValueExW(key.Get(), name, nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()), &size);
        return static_cast<int>(type);
    }

private:
    std::wstring path_;
    RegistryKey key_;
};

} // namespace

TEST(Registry, WritesStrings) {
    const ScratchKey scratch;
    const struct {
        const wchar_t *name, *data;
    } cases[] = {{nullptr, L"default"}, {L"named", L"text"}, {L"named", L"over it"}, {L"empty", L""}};
    for (const auto& [name, data] : cases) {
        EXPECT_EQ(WriteStringValue({scratch.Get(), L"a\\b", name, data}), S_OK);
        std::wstring stored;
        EXPECT_EQ(scratch.TypeOf(L"a\\b", name, stored), int{REG_SZ});
        EXPECT_TRUE(stored == std::wstring(data) + L'\0'); // the terminator is stored as well
    }
    EXPECT_EQ(WriteStringValue({nullptr, L"a", L"b", L"c"}), HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE));
}

TEST(Registry, DeletesValuesByPath) {
    const ScratchKey scratch;
    WriteStringValue({scratch.Get(), L"a\\.b", L"InfoTip", L"x"});
    WriteStringValue({scratch.Get(), L"a\\.b", L"kept", L"x"});
    const std::wstring tooLong = L"a\\.b\\" + std::wstring(MAX_PATH, L'x');
    for (const wchar_t* path : {L"InfoTip", L"", L"a\\.b\\missing", L"a\\none\\InfoTip", tooLong.c_str()})
        EXPECT_FALSE(RegistryKey::DeleteValueByPath(scratch.Get(), path));
    std::wstring data;
    EXPECT_EQ(scratch.TypeOf(L"a\\.b", L"InfoTip", data), int{REG_SZ});
    EXPECT_TRUE(RegistryKey::DeleteValueByPath(scratch.Get(), L"a\\.b\\InfoTip"));
    EXPECT_EQ(scratch.TypeOf(L"a\\.b", L"InfoTip", data), -1);
    EXPECT_EQ(scratch.TypeOf(L"a\\.b", L"kept", data), int{REG_SZ});
}

TEST(Registry, DeletesKeyTrees) {
    const ScratchKey scratch;
    for (const wchar_t* path : {L"tree\\1\\2\\3", L"tree\\1\\other", L"tree\\4", L"neighbour"})
        WriteStringValue({scratch.Get(), path, L"value", L"x"});
    EXPECT_TRUE(RegistryKey::DeleteKeyTree(scratch.Get(), L"tree"));
    EXPECT_FALSE(scratch.Has(L"tree"));
    EXPECT_TRUE(scratch.Has(L"neighbour"));

    EXPECT_TRUE(RegistryKey::DeleteKeyTree(scratch.Get(), L"new\\parent\\missing"));
    EXPECT_TRUE(scratch.Has(L"new\\parent")) << "parents made on the way stay";
    EXPECT_FALSE(scratch.Has(L"new\\parent\\missing"));
    EXPECT_FALSE(RegistryKey::DeleteKeyTree(nullptr, L"tree"));
}

TEST(Registry, OpensKeysToEveryone) {
    const ScratchKey scratch;
    SecurityApi api;
    EXPECT_EQ(api.MakeSecurityDescriptor(L"no such language"), nullptr);
    EXPECT_FALSE(GrantEveryoneFullAccess(api, nullptr, L"key"));
    ASSERT_TRUE(GrantEveryoneFullAccess(api, scratch.Get(), L"key"));

    RegistryKey key;
    ASSERT_EQ(RegOpenKeyExW(scratch.Get(), L"key", 0, KEY_READ, key.Put()), ERROR_SUCCESS);
    alignas(8) BYTE descriptor[512];
    DWORD size = sizeof descriptor;
    ASSERT_EQ(RegGetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, descriptor, &size), ERROR_SUCCESS);
    BOOL present = FALSE, defaulted = FALSE;
    ACL* acl = nullptr;
    ASSERT_TRUE(GetSecurityDescriptorDacl(descriptor, &present, &acl, &defaulted));
    ASSERT_TRUE(present && acl);
    ASSERT_EQ(acl->AceCount, 1);
    ACCESS_ALLOWED_ACE* entry = nullptr;
    ASSERT_TRUE(GetAce(acl, 0, reinterpret_cast<void**>(&entry)));
    EXPECT_EQ(entry->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
    EXPECT_TRUE(IsWellKnownSid(&entry->SidStart, WinWorldSid));
}

} // namespace vantrel::tests
