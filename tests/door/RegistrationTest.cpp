#include "tests/host/Requests.h"
#include "tests/host/ResourceWatch.h"
#include "tests/host/ScratchRegistry.h"

#include <shlobj.h>

#include <cwchar>
#include <functional>
#include <set>

namespace vantrel::tests {
namespace {

// A registry key "root\path", or a text value "root\path|name|data" of one; the root is User or Machine.
using Line = std::wstring;
using Lines = std::vector<Line>;

// What registration writes, in order.
Lines ExpectedLines(const Line& library = DllPath()) {
    Lines lines;
    const auto add = [&](const Line& value) { lines.push_back(LR"(User\Software\Classes\)" + value); };
    const auto addClass = [&](const Line& id, const Line& description) {
        add(LR"(CLSID\)" + id + L"||" + description);
        add(LR"(CLSID\)" + id + LR"(\InProcServer32||)" + library);
        add(LR"(CLSID\)" + id + LR"(\InProcServer32|ThreadingModel|Apartment)");
    };
    const auto addList = [&](const Line& name, const Line& properties) {
        add(L".zmi|" + name + L"|prop:" + properties);
    };
    const Line facts = L"System.Title;System.Image.Dimensions;System.Image.BitDepth";
    addClass(L"{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}", L"Vantrel Thumbnail Provider");
    add(LR"(.zmi\ShellEx\{E357FCCD-A995-4576-B01F-234630154E96}||{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F})");
    addClass(L"{C46E1B3A-92F7-4d05-A1E8-7B3D5F92C0A6}", L"Vantrel Extract Image");
    add(LR"(.zmi\ShellEx\{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}||{C46E1B3A-92F7-4d05-A1E8-7B3D5F92C0A6})");
    addClass(L"{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}", L"Vantrel Extract Icon");
    add(LR"(.zmi\ShellEx\IconHandler||{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27})");
    addClass(L"{A8D4E2F1-37C9-4b6a-8E05-91F2C6D7A3B4}", L"Vantrel Column Provider");
    add(LR"(Folder\ShellEx\ColumnHandlers\{A8D4E2F1-37C9-4b6a-8E05-91F2C6D7A3B4}||Vantrel Column Provider)");
    addList(L"QuickTip", L"Dimensions;Type;Size;Write");
    addList(L"TileInfo", L"Dimensions;Size");
    addClass(L"{3F1C9A42-6B0D-4e57-9A21-5C8E7D40B613}", L"Vantrel Property Store");
    addList(L"ContentViewModeForBrowse",
            L"~System.ItemNameDisplay;System.Size;" + facts + L";System.DateModified");
    addList(L"InfoTip", L"System.ItemTypeText;" + facts + L";System.Size;System.DateModified");
    addList(L"FullDetails",
            L"System.PropGroup.Description;" + facts +
                L";System.PropGroup.FileSystem;System.ItemNameDisplay;System.ItemTypeText;"
                L"System.ItemFolderPathDisplay;System.Size;System.DateCreated;System.DateModified;"
                L"System.FileAttributes;*System.OfflineAvailability;*System.OfflineStatus;"
                L"*System.SharedWith;*System.FileOwner;*System.ComputerName");
    addList(L"PreviewDetails", facts +
                                   L";System.DateModified;System.Size;System.DateCreated;"
                                   L"*System.OfflineAvailability;*System.OfflineStatus;*System.SharedWith");
    addList(L"PreviewTitle", L"System.ItemNameDisplay;System.ItemTypeText;" + facts);
    addList(L"ExtendedTileInfo",
            L"System.ItemTypeText;" + facts + L";System.Size;System.DateModified;System.OfflineAvailability");
    lines.push_back(
        LR"(Machine\Software\Microsoft\Windows\CurrentVersion\PropertySystem\PropertyHandlers\.zmi||)"
        L"{3F1C9A42-6B0D-4e57-9A21-5C8E7D40B613}");
    return lines;
}

void Write(const Lines& lines) {
    for (const Line& line : lines) {
        const std::size_t path = line.find(L'\\') + 1, name = line.find(L'|') + 1,
                          data = line.find(L'|', name) + 1;
        const HKEY root = line.starts_with(L"User") ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
        const auto size = static_cast<DWORD>((line.size() - data + 1) * sizeof(wchar_t));
        EXPECT_EQ(ERROR_SUCCESS,
                  RegSetKeyValueW(root, line.substr(path, name - 1 - path).c_str(),
                                  line.substr(name, data - 1 - name).c_str(), REG_SZ, &line[data], size));
    }
}

// Every key below this one and every value in them.
void List(HKEY key, const Line& path, std::set<Line>& lines) {
    lines.insert(path);
    wchar_t name[256];
    wchar_t data[1024];
    for (DWORD i = 0, length = 256, type = 0, size = sizeof data;
         RegEnumValueW(key, i, name, &length, nullptr, &type, reinterpret_cast<BYTE*>(data), &size) == 0;
         ++i, length = 256, size = sizeof data) {
        EXPECT_EQ(DWORD{REG_SZ}, type);
        lines.insert(path + L"|" + name + L"|" + data);
    }
    for (DWORD i = 0; RegEnumKeyW(key, i, name, 256) == ERROR_SUCCESS; ++i) {
        HKEY child = nullptr;
        EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyExW(key, name, 0, KEY_READ, &child));
        List(child, path + L"\\" + name, lines);
        RegCloseKey(child);
    }
}

std::set<Line> Content() {
    std::set<Line> lines;
    List(HKEY_CURRENT_USER, L"User", lines);
    List(HKEY_LOCAL_MACHINE, L"Machine", lines);
    return lines;
}

// The listing of a scratch registry with only these values and keys.
std::set<Line> Listing(const Lines& lines) {
    std::set<Line> listing(lines.begin(), lines.end());
    for (const Line& line : lines) {
        for (std::size_t end = std::min(line.find(L'|'), line.size()); end != Line::npos;
             end = line.rfind(L'\\', end - 1))
            listing.insert(line.substr(0, end));
    }
    listing.insert({L"User", L"Machine"});
    return listing;
}

// Counts what the library writes and announces; can refuse its calls.
class RegistryWatch {
public:
    std::size_t written = 0;
    unsigned notifications = 0;
    std::function<LSTATUS()> create = [] { return ERROR_SUCCESS; };
    std::function<LSTATUS()> set = [] { return ERROR_SUCCESS; };

private:
    ImportHook<"RegCreateKeyExW", decltype(RegCreateKeyExW)> create_{
        TheDll(), [this](auto original, HKEY root, const wchar_t* path, DWORD reserved, wchar_t* kind,
                         DWORD options, auto... rest) {
            // What is volatile is gone at the next logoff.
            EXPECT_EQ(DWORD{REG_OPTION_NON_VOLATILE}, options);
            const LSTATUS refusal = create();
            return refusal ? refusal : original(root, path, reserved, kind, options, rest...);
        }};
    ImportHook<"RegSetValueExW", decltype(RegSetValueExW)> set_{
        TheDll(), [this](auto original, HKEY key, const wchar_t* name, DWORD reserved, DWORD type,
                         const BYTE* data, DWORD size) {
            if (const LSTATUS refusal = set())
                return refusal;
            // Checked here, since the system adds a missing terminating zero.
            EXPECT_EQ((std::wcslen(reinterpret_cast<const wchar_t*>(data)) + 1) * sizeof(wchar_t), size);
            ++written;
            return original(key, name, reserved, type, data, size);
        }};
    ImportHook<"SHChangeNotify", decltype(SHChangeNotify)> notify_{
        TheDll(), [this](auto, LONG event, UINT flags, const void* first, const void* second) {
            EXPECT_EQ(std::tuple(LONG{SHCNE_ASSOCCHANGED}, UINT{SHCNF_IDLIST}, nullptr, nullptr),
                      std::tuple(event, flags, first, second));
            ++notifications;
        }};
};

TEST(Registration, WritesTwentyEightValues) {
    const ScratchRegistry registry;
    for (int round = 0; round < 2; ++round) {
        RegistryWatch watch;
        EXPECT_EQ(S_OK, CallExport("DllRegisterServer"));
        EXPECT_EQ(28u, watch.written);
        EXPECT_EQ(1u, watch.notifications);
        EXPECT_EQ(Listing(ExpectedLines()), Content()) << "twice is once";
    }
}

TEST(Registration, StopsAtTheFirstRowThatFails) {
    const Lines all = ExpectedLines();
    for (const bool refuseSet : {false, true}) {
        for (std::size_t row = 0; row < all.size(); ++row) {
            SCOPED_TRACE(testing::Message() << "row " << row + 1 << (refuseSet ? " set" : " create"));
            const ScratchRegistry registry;
            RegistryWatch watch;
            (refuseSet ? watch.set : watch.create) = [row, call = std::size_t{0}]() mutable {
                return call++ == row ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
            };
            EXPECT_EQ(static_cast<HRESULT>(0x80070005), CallExport("DllRegisterServer"));
            EXPECT_EQ(row, watch.written);
            EXPECT_EQ(0u, watch.notifications);
            const Lines rows(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(row));
            EXPECT_TRUE(refuseSet || Listing(rows) == Content());
        }
    }
}

// A path that is too long is truncated; some versions of Windows omit the terminator.
TEST(Registration, NeedsTheModulesPath) {
    const ScratchRegistry registry;
    for (const auto& [length, error] :
         {std::pair<DWORD, DWORD>{0, ERROR_ACCESS_DENIED}, {0, 0}, {MAX_PATH, 0}}) {
        const ImportHook<"GetModuleFileNameW", decltype(GetModuleFileNameW)> path(
            TheDll(), [result = length, code = error](auto, HMODULE module, wchar_t* buffer, DWORD size) {
                EXPECT_EQ(TheDll(), module);
                EXPECT_EQ(DWORD{MAX_PATH}, size);
                std::fill_n(buffer, result, L'x');
                SetLastError(code);
                return result;
            });
        EXPECT_EQ(HRESULT_FROM_WIN32(error), CallExport("DllRegisterServer"));
        EXPECT_EQ(Listing(length == 0 ? Lines{} : ExpectedLines(Line(259, L'x'))), Content());
    }
}

TEST(Unregistration, TakesAwayOursAndNothingElse) {
    const Lines foreign = {
        LR"(User\Software\Classes\.zmi||Foreign.File)",
        LR"(User\Software\Classes\.zmi|PerceivedType|image)",
        LR"(User\Software\Classes\.zmi\ShellEx\{8895B1C6-B41F-4C1C-A562-0D564250836F}||other)",
        LR"(User\Software\Classes\CLSID\{00000000-0000-0000-0000-000000000001}||other)",
        LR"(User\Software\Classes\Folder\ShellEx\ColumnHandlers\{00000000-0000-0000-0000-000000000001}||x)",
        LR"(Machine\Software\Microsoft\Windows\CurrentVersion\PropertySystem\PropertyHandlers\.png||other)",
    };
    const Lines nested = {
        LR"(User\Software\Classes\CLSID\{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}\InProcServer32\Deep\Deeper|x|y)",
        LR"(User\Software\Classes\CLSID\{3F1C9A42-6B0D-4e57-9A21-5C8E7D40B613}\A||y)",
        LR"(User\Software\Classes\.zmi\ShellEx\IconHandler\Nested||y)",
        LR"(Machine\Software\Microsoft\Windows\CurrentVersion\PropertySystem\PropertyHandlers.zmi\Deep||y)",
    };
    Lines left = foreign;
    left.push_back(ExpectedLines().back()); // the machine's binding stays
    for (const LSTATUS status : {ERROR_SUCCESS, ERROR_ACCESS_DENIED}) {
        SCOPED_TRACE(status == ERROR_SUCCESS ? "all granted" : "no key's rights can be changed");
        const ScratchRegistry registry;
        Write(foreign);
        Write(nested);
        ASSERT_EQ(S_OK, CallExport("DllRegisterServer"));
        RegistryWatch watch;
        watch.create = [=] { return status; };
        EXPECT_EQ(S_OK, CallExport("DllUnregisterServer"));
        EXPECT_EQ(Listing(left), Content());
        EXPECT_EQ(0u, watch.written);
        EXPECT_EQ(1u, watch.notifications);
    }
}

TEST(Unregistration, LeavesTheKeysAroundOurs) {
    const ScratchRegistry registry;
    EXPECT_EQ(S_OK, CallExport("DllUnregisterServer")) << "with nothing registered";
    EXPECT_EQ(Listing({LR"(User\Software\Classes\CLSID)", LR"(User\Software\Classes\.zmi\ShellEx)",
                       LR"(User\Software\Classes\Folder\ShellEx\ColumnHandlers)",
                       LR"(Machine\Software\Microsoft\Windows\CurrentVersion\PropertySystem)"}),
              Content());
}

TEST(Registration, SurvivesAStarvingMachine) {
    for (const Refuse mode : {Refuse::One, Refuse::FromThereOn}) {
        bool refused = true;
        for (unsigned number = 1; refused; ++number) {
            const ScratchRegistry registry;
            ResourceWatch watch(number, mode);
            EXPECT_EQ(S_OK, CallExport("DllRegisterServer"));
            EXPECT_EQ(S_OK, CallExport("DllUnregisterServer"));
            const std::set<Line> left = Content();
            EXPECT_EQ(1, std::ranges::count_if(
                             left, [](const Line& line) { return line.find(L'|') != Line::npos; }))
                << "taking " << number;
            EXPECT_EQ(0u, watch.Live()) << "taking " << number;
            refused = !watch.RefusedName().empty();
        }
    }
}

} // namespace
} // namespace vantrel::tests
