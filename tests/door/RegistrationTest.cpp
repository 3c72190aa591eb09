#include "tests/door/ResourceWatch.h"
#include "tests/door/ScratchRegistry.h"

#include <shlobj.h>

#include <cstring>
#include <functional>

namespace vantrel::tests {
namespace {

struct Row {
    HKEY root;
    std::wstring key;
    std::wstring name; // empty for the default value
    std::wstring data;

    bool operator==(const Row&) const = default;
};

// What registration writes, in its order.
std::vector<Row> ExpectedRows() {
    const std::wstring classes = L"Software\\Classes\\";
    const std::wstring type = classes + L".zmi";
    std::vector<Row> rows;
    const auto addClass = [&](const wchar_t* id, const wchar_t* description) {
        const std::wstring key = classes + L"CLSID\\" + id;
        rows.push_back({HKEY_CURRENT_USER, key, L"", description});
        rows.push_back({HKEY_CURRENT_USER, key + L"\\InProcServer32", L"", DllPath()});
        rows.push_back({HKEY_CURRENT_USER, key + L"\\InProcServer32", L"ThreadingModel", L"Apartment"});
    };
    const auto addUser = [&](const std::wstring& key, const wchar_t* name, const wchar_t* data) {
        rows.push_back({HKEY_CURRENT_USER, key, name, data});
    };
    addClass(L"{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}", L"Vantrel Thumbnail Provider");
    addUser(type + L"\\ShellEx\\{E357FCCD-A995-4576-B01F-234630154E96}", L"",
            L"{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}");
    addClass(L"{C46E1B3A-92F7-4d05-A1E8-7B3D5F92C0A6}", L"Vantrel Extract Image");
    addUser(type + L"\\ShellEx\\{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}", L"",
            L"{C46E1B3A-92F7-4d05-A1E8-7B3D5F92C0A6}");
    addClass(L"{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}", L"Vantrel Extract Icon");
    addUser(type + L"\\ShellEx\\IconHandler", L"", L"{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}");
    addClass(L"{A8D4E2F1-37C9-4b6a-8E05-91F2C6D7A3B4}", L"Vantrel Column Provider");
    addUser(classes + L"Folder\\ShellEx\\ColumnHandlers\\{A8D4E2F1-37C9-4b6a-8E05-91F2C6D7A3B4}", L"",
            L"Vantrel Column Provider");
    addUser(type, L"QuickTip", L"prop:Dimensions;Type;Size;Write");
    addUser(type, L"TileInfo", L"prop:Dimensions;Size");
    addClass(L"{3F1C9A42-6B0D-4e57-9A21-5C8E7D40B613}", L"Vantrel Property Store");
    addUser(type, L"ContentViewModeForBrowse",
            L"prop:~System.ItemNameDisplay;System.Size;System.Title;System.Image.Dimensions;System.Image."
            L"BitDepth;"
            L"System.DateModified");
    addUser(
        type, L"InfoTip",
        L"prop:System.ItemTypeText;System.Title;System.Image.Dimensions;System.Image.BitDepth;System.Size;"
        L"System.DateModified");
    addUser(type, L"FullDetails",
            L"prop:System.PropGroup.Description;System.Title;System.Image.Dimensions;System.Image.BitDepth;"
            L"System.PropGroup.FileSystem;System.ItemNameDisplay;System.ItemTypeText;System."
            L"ItemFolderPathDisplay;"
            L"System.Size;System.DateCreated;System.DateModified;System.FileAttributes;*System."
            L"OfflineAvailability;"
            L"*System.OfflineStatus;*System.SharedWith;*System.FileOwner;*System.ComputerName");
    addUser(
        type, L"PreviewDetails",
        L"prop:System.Title;System.Image.Dimensions;System.Image.BitDepth;System.DateModified;System.Size;"
        L"System.DateCreated;*System.OfflineAvailability;*System.OfflineStatus;*System.SharedWith");
    addUser(type, L"PreviewTitle",
            L"prop:System.ItemNameDisplay;System.ItemTypeText;System.Title;System.Image.Dimensions;"
            L"System.Image.BitDepth");
    addUser(
        type, L"ExtendedTileInfo",
        L"prop:System.ItemTypeText;System.Title;System.Image.Dimensions;System.Image.BitDepth;System.Size;"
        L"System.DateModified;System.OfflineAvailability");
    rows.push_back({HKEY_LOCAL_MACHINE,
                    L"Software\\Microsoft\\Windows\\CurrentVersion\\PropertySystem\\PropertyHandlers\\.zmi",
                    L"", L"{3F1C9A42-6B0D-4e57-9A21-5C8E7D40B613}"});
    return rows;
}

std::wstring ReadValue(const Row& row) {
    wchar_t data[1024] = {};
    DWORD size = sizeof data;
    DWORD type = 0;
    if (RegGetValueW(row.root, row.key.c_str(), row.name.empty() ? nullptr : row.name.c_str(), RRF_RT_REG_SZ,
                     &type, data, &size) != ERROR_SUCCESS)
        return L"(none)";
    return data;
}

// The rows a redirected registry holds, values and keys, as its listing shows them.
std::set<std::wstring> Listed(const std::vector<Row>& rows) {
    std::set<std::wstring> lines = {L"\\", L"User\\", L"Machine\\"};
    for (const Row& row : rows) {
        const std::wstring path = (row.root == HKEY_CURRENT_USER ? L"User\\" : L"Machine\\") + row.key;
        for (std::size_t end = path.find(L'\\'); end != std::wstring::npos; end = path.find(L'\\', end + 1))
            lines.insert(path.substr(0, end + 1));
        lines.insert(path + L"\\");
        if (row.data.empty()) // a key alone
            continue;
        lines.insert(path + L"\\" + row.name + L" = 1:" + std::to_wstring((row.data.size() + 1) * 2) + L":" +
                     row.data + L'\0');
    }
    return lines;
}

void Write(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        HKEY key = nullptr;
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyW(row.root, row.key.c_str(), &key));
        if (!row.data.empty())
            RegSetValueExW(key, row.name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(row.data.c_str()),
                           static_cast<DWORD>((row.data.size() + 1) * sizeof(wchar_t)));
        RegCloseKey(key);
    }
}

// Records the library's own calls; can refuse one of them.
class RegistryWatch {
public:
    std::vector<Row> written{};
    unsigned created = 0;
    int open = 0;
    unsigned notifications = 0;
    std::function<LSTATUS()> refuseCreate = [] { return ERROR_SUCCESS; };
    std::function<LSTATUS()> refuseSet = [] { return ERROR_SUCCESS; };

private:
    std::map<HKEY, std::pair<HKEY, std::wstring>> keys_{};
    ImportHook<"RegCreateKeyExW", LSTATUS(HKEY, const wchar_t*, DWORD, wchar_t*, DWORD, REGSAM,
                                          SECURITY_ATTRIBUTES*, HKEY*, DWORD*)>
        create_{TheDll(),
                [this](auto original, HKEY root, const wchar_t* path, DWORD reserved, wchar_t* classes,
                       DWORD options, REGSAM rights, auto* security, HKEY* key, DWORD* disposition) {
                    ++created;
                    if (const LSTATUS refusal = refuseCreate(); refusal != ERROR_SUCCESS)
                        return refusal;
                    const LSTATUS status =
                        original(root, path, reserved, classes, options, rights, security, key, disposition);
                    if (status == ERROR_SUCCESS) {
                        ++open;
                        keys_[*key] = {root, path};
                    }
                    return status;
                }};
    ImportHook<"RegSetValueExW", LSTATUS(HKEY, const wchar_t*, DWORD, DWORD, const BYTE*, DWORD)> set_{
        TheDll(), [this](auto original, HKEY key, const wchar_t* name, DWORD reserved, DWORD type,
                         const BYTE* data, DWORD size) {
            if (const LSTATUS refusal = refuseSet(); refusal != ERROR_SUCCESS)
                return refusal;
            // The terminating zero is counted.
            EXPECT_EQ(DWORD{REG_SZ}, type);
            const auto* const text = reinterpret_cast<const wchar_t*>(data);
            EXPECT_EQ((std::wcslen(text) + 1) * sizeof(wchar_t), size);
            written.push_back({keys_[key].first, keys_[key].second, name ? name : L"", text});
            return original(key, name, reserved, type, data, size);
        }};
    ImportHook<"RegCloseKey", LSTATUS(HKEY)> close_{TheDll(), [this](auto original, HKEY key) {
                                                        open -= static_cast<int>(keys_.erase(key));
                                                        return original(key);
                                                    }};
    ImportHook<"SHChangeNotify", void(LONG, UINT, const void*, const void*)> notify_{
        TheDll(), [this](auto, LONG event, UINT flags, const void* first, const void* second) {
            EXPECT_EQ(SHCNE_ASSOCCHANGED, event);
            EXPECT_EQ(0u, flags);
            EXPECT_TRUE(!first && !second);
            ++notifications;
        }};
};

HRESULT Register() {
    return CallExport("DllRegisterServer");
}

HRESULT Unregister() {
    return CallExport("DllUnregisterServer");
}

TEST(Registration, WritesTwentyEightValuesInOrder) {
    const ScratchRegistry registry;
    RegistryWatch watch;
    ASSERT_EQ(28u, ExpectedRows().size());
    EXPECT_EQ(S_OK, Register());
    EXPECT_EQ(ExpectedRows(), watch.written);
    EXPECT_EQ(1u, watch.notifications);
    EXPECT_EQ(0, watch.open);
    EXPECT_EQ(Listed(ExpectedRows()), registry.List());

    EXPECT_EQ(S_OK, Register());
    EXPECT_EQ(56u, watch.written.size());
    EXPECT_EQ(2u, watch.notifications);
    EXPECT_EQ(Listed(ExpectedRows()), registry.List()) << "twice is once";
}

TEST(Registration, StopsAtTheFirstRowThatFails) {
    const std::vector<Row> all = ExpectedRows();
    for (const bool refuseSet : {false, true}) {
        for (std::size_t row = 0; row < all.size(); ++row) {
            SCOPED_TRACE(testing::Message() << "row " << row + 1 << (refuseSet ? " set" : " create"));
            const ScratchRegistry registry;
            RegistryWatch watch;
            const auto refuse = [&] {
                return watch.written.size() == row ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
            };
            (refuseSet ? watch.refuseSet : watch.refuseCreate) = refuse;
            EXPECT_EQ(static_cast<HRESULT>(0x80070005), Register());
            const std::vector<Row> rows(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(row));
            EXPECT_EQ(rows, watch.written);
            EXPECT_EQ(row + 1, watch.created);
            EXPECT_EQ(0u, watch.notifications);
            EXPECT_EQ(0, watch.open);
            if (!refuseSet) {
                EXPECT_EQ(Listed(rows), registry.List());
            }
        }
    }
}

TEST(Registration, NeedsTheModulesPath) {
    const ScratchRegistry registry;
    const auto before = registry.List();
    for (const DWORD error : {DWORD{ERROR_ACCESS_DENIED}, DWORD{ERROR_SUCCESS}}) {
        RegistryWatch watch;
        const ImportHook<"GetModuleFileNameW", DWORD(HMODULE, wchar_t*, DWORD)> path(
            TheDll(), [=](auto, HMODULE module, wchar_t*, DWORD size) {
                EXPECT_EQ(TheDll(), module);
                EXPECT_EQ(DWORD{MAX_PATH}, size);
                SetLastError(error);
                return DWORD{0};
            });
        EXPECT_EQ(HRESULT_FROM_WIN32(error), Register());
        EXPECT_EQ(0u, watch.created + watch.notifications);
        EXPECT_EQ(before, registry.List());
    }
}

// What other programs keep beside ours, and what they have put inside ours.
const std::vector<Row> foreignRows = {
    {HKEY_CURRENT_USER, L"Software\\Classes\\.zmi", L"", L"Foreign.File"},
    {HKEY_CURRENT_USER, L"Software\\Classes\\.zmi", L"PerceivedType", L"image"},
    {HKEY_CURRENT_USER, L"Software\\Classes\\.zmi\\OpenWithProgids", L"Foreign.File", L"x"},
    {HKEY_CURRENT_USER, L"Software\\Classes\\.zmi\\ShellEx\\{8895B1C6-B41F-4C1C-A562-0D564250836F}", L"",
     L"other"},
    {HKEY_CURRENT_USER, L"Software\\Classes\\CLSID\\{00000000-0000-0000-0000-000000000001}", L"", L"other"},
    {HKEY_CURRENT_USER,
     L"Software\\Classes\\Folder\\ShellEx\\ColumnHandlers\\{00000000-0000-0000-0000-000000000001}", L"",
     L"other"},
    {HKEY_LOCAL_MACHINE,
     L"Software\\Microsoft\\Windows\\CurrentVersion\\PropertySystem\\PropertyHandlers\\.png", L"", L"other"},
};
const std::vector<Row> nestedRows = {
    {HKEY_CURRENT_USER,
     L"Software\\Classes\\CLSID\\{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}\\InProcServer32\\Deep\\Deeper", L"x",
     L"y"},
    {HKEY_CURRENT_USER, L"Software\\Classes\\CLSID\\{3F1C9A42-6B0D-4e57-9A21-5C8E7D40B613}\\Second", L"",
     L"y"},
    {HKEY_CURRENT_USER, L"Software\\Classes\\.zmi\\ShellEx\\IconHandler\\Nested", L"", L"y"},
    {HKEY_LOCAL_MACHINE,
     L"Software\\Microsoft\\Windows\\CurrentVersion\\PropertySystem\\PropertyHandlers.zmi\\Deep", L"", L"y"},
};

TEST(Unregistration, TakesAwayOursAndNothingElse) {
    const ScratchRegistry registry;
    RegistryWatch watch;
    Write(foreignRows);
    Write(nestedRows);
    ASSERT_EQ(S_OK, Register());
    EXPECT_EQ(S_OK, Unregister());
    std::vector<Row> left = foreignRows;
    left.push_back(ExpectedRows().back()); // the machine's binding stays
    EXPECT_EQ(Listed(left), registry.List());
    EXPECT_EQ(2u, watch.notifications);
    EXPECT_EQ(0, watch.open);
}

TEST(Unregistration, LeavesTheKeysAroundOurs) {
    const std::vector<Row> keys = {
        {HKEY_CURRENT_USER, L"Software\\Classes\\CLSID", L"", L""},
        {HKEY_CURRENT_USER, L"Software\\Classes\\.zmi\\ShellEx", L"", L""},
        {HKEY_CURRENT_USER, L"Software\\Classes\\Folder\\ShellEx\\ColumnHandlers", L"", L""},
        {HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows\\CurrentVersion\\PropertySystem", L"", L""},
    };
    const ScratchRegistry registry;
    EXPECT_EQ(S_OK, Unregister()) << "with nothing registered";
    EXPECT_EQ(Listed(keys), registry.List());
    ASSERT_EQ(S_OK, Register());
    EXPECT_EQ(S_OK, Unregister());
    std::vector<Row> left = keys;
    left.push_back(ExpectedRows().back());
    EXPECT_EQ(Listed(left), registry.List());
}

TEST(Unregistration, GoesOnWhateverFails) {
    const ScratchRegistry registry;
    ASSERT_EQ(S_OK, Register());
    RegistryWatch watch;
    watch.refuseCreate = [] { return ERROR_ACCESS_DENIED; }; // no key's rights can be changed
    EXPECT_EQ(S_OK, Unregister());
    EXPECT_EQ(1u, watch.notifications);
    for (const Row& row : ExpectedRows())
        EXPECT_EQ(row.root == HKEY_LOCAL_MACHINE, ReadValue(row) == row.data)
            << testing::PrintToString(row.key);
}

TEST(Registration, SurvivesAStarvingMachine) {
    {
        // What the C++ runtime sets up for a thread's first exception stays.
        const ScratchRegistry registry;
        const ResourceWatch watch(1);
        EXPECT_EQ(E_OUTOFMEMORY, Register());
    }
    for (unsigned number = 1;; ++number) {
        const ScratchRegistry registry;
        std::string refused;
        {
            ResourceWatch watch(number);
            const HRESULT result = Register();
            refused = watch.RefusedName();
            EXPECT_EQ(refused.empty() ? S_OK : E_OUTOFMEMORY, result);
            EXPECT_EQ(0u, watch.Live());
        }
        {
            ResourceWatch watch(number);
            EXPECT_EQ(S_OK, Unregister());
            EXPECT_EQ(0u, watch.Live());
            if (refused.empty() && watch.RefusedName().empty())
                break;
        }
        EXPECT_EQ(S_OK, Register());
        EXPECT_EQ(Listed(ExpectedRows()), registry.List());
    }
}

DWORD RunProgram(std::wstring command) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
        return GetLastError();
    WaitForSingleObject(process.hProcess, 60'000);
    DWORD exitCode = STILL_ACTIVE;
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return exitCode;
}

// In the real registry, which a child process can't be kept from; a registration found there is put back.
TEST(Registration, WorksThroughRegsvr32) {
    const std::vector<Row> rows = ExpectedRows();
    const std::wstring previous = ReadValue(rows[1]);
    EXPECT_EQ(0u, RunProgram(L"regsvr32.exe /s \"" + DllPath() + L"\""));
    for (const Row& row : rows)
        EXPECT_EQ(row.data, ReadValue(row)) << testing::PrintToString(row.key);
    EXPECT_EQ(0u, RunProgram(L"regsvr32.exe /s /u \"" + DllPath() + L"\""));
    for (const Row& row : rows)
        EXPECT_EQ(row.root == HKEY_LOCAL_MACHINE ? row.data : L"(none)", ReadValue(row))
            << testing::PrintToString(row.key);
    if (previous != L"(none)") {
        EXPECT_EQ(0u, RunProgram(L"regsvr32.exe /s \"" + previous + L"\""));
    } else {
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, rows.back().key.c_str());
    }
}

} // namespace
} // namespace vantrel::tests
