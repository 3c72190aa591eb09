#include "tests/tools/ToolTest.h"

namespace vantrel::tests {
namespace {

constexpr wchar_t serverKey[] =
    LR"(Software\Classes\CLSID\{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}\InProcServer32)";
constexpr wchar_t bindingKey[] = LR"(Software\Classes\.zmi\ShellEx\{E357FCCD-A995-4576-B01F-234630154E96})";
constexpr wchar_t explorerKey[] = LR"(Software\Microsoft\Windows\CurrentVersion\Explorer\Advanced)";
constexpr wchar_t propertyKey[] =
    LR"(SOFTWARE\Microsoft\Windows\CurrentVersion\PropertySystem\PropertyHandlers\.zmi)";

class DoctorTest : public ToolTest {
protected:
    DWORD Regsvr32(const Arguments& arguments) const { return Run(L"regsvr32.exe", arguments).exitCode; }

    // The doctor finds as many faults, and says these words.
    void ExpectFaults(const std::vector<std::string>& faults, const std::wstring& file = L"good.zmi") const {
        const ToolRun run = Run(Beside(L"zmi-preview.exe"), {L"--doctor", file});
        run.Ended(faults.empty() ? 0 : 1);
        std::size_t count = 0;
        for (std::size_t at = 0; (at = run.out.find("[fail]", at)) != std::string::npos; ++at)
            ++count;
        EXPECT_EQ(faults.size(), count) << run.out;
        for (const std::string& fault : faults)
            EXPECT_TRUE(Contains(run.out, fault)) << fault << "\n not in \n" << run.out;
    }
};

// In the real registry, which a child process can't be kept from; a registration found there is put back.
TEST_F(DoctorTest, NamesWhatIsWrongWithTheRegistration) {
    const std::wstring library = Beside(L"Vantrel64.dll");
    wchar_t previous[MAX_PATH] = L"";
    DWORD iconsOnly = 0;
    DWORD size = sizeof previous;
    RegGetValueW(HKEY_CURRENT_USER, serverKey, nullptr, RRF_RT_REG_SZ, nullptr, previous, &size);
    size = sizeof iconsOnly;
    RegGetValueW(HKEY_CURRENT_USER, explorerKey, L"IconsOnly", RRF_RT_REG_DWORD, nullptr, &iconsOnly, &size);
    const auto setIconsOnly = [](DWORD value) {
        RegSetKeyValueW(HKEY_CURRENT_USER, explorerKey, L"IconsOnly", REG_DWORD, &value, sizeof value);
    };
    if (Regsvr32({L"/s", library}) != 0)
        GTEST_SKIP() << "registering takes an administrator's rights";

    Write(L"good.zmi", ZmiBuilder{}.Build());
    Write(L"bad.zmi", {'x'});
    setIconsOnly(0);
    ExpectFaults({});
    ExpectFaults({"bad.zmi: the file has 1 bytes"}, L"bad.zmi");
    setIconsOnly(1);
    ExpectFaults({"Explorer shows icons instead of thumbnails"});
    setIconsOnly(0);
    const struct {
        HKEY root;
        const wchar_t* key;
        const wchar_t* name;
        std::wstring data; // empty: the value is taken away
        std::vector<std::string> faults;
    } changes[] = {
        {HKEY_CURRENT_USER, bindingKey, nullptr, L"{0}", {"[default value] is \"{0}\", not \"{E1A95D7C-"}},
        {HKEY_CURRENT_USER, serverKey, L"ThreadingModel", {}, {"[ThreadingModel] is missing"}},
        {HKEY_CURRENT_USER, serverKey, nullptr, L"none.dll", {"different libraries", "does not exist"}},
        {HKEY_LOCAL_MACHINE, propertyKey, nullptr, {}, {"opened as administrator"}},
    };
    for (const auto& [root, key, name, data, faults] : changes) {
        if (data.empty())
            RegDeleteKeyValueW(root, key, name);
        else
            RegSetKeyValueW(root, key, name, REG_SZ, data.c_str(), static_cast<DWORD>(data.size() * 2 + 2));
        ExpectFaults(faults);
        EXPECT_EQ(0u, Regsvr32({L"/s", library}));
    }
    EXPECT_EQ(0u, Regsvr32({L"/s", L"/u", library}));
    ExpectFaults({"the library is not registered for this user"});

    setIconsOnly(iconsOnly);
    if (*previous)
        EXPECT_EQ(0u, Regsvr32({L"/s", previous}));
    else
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, propertyKey);
}

} // namespace
} // namespace vantrel::tests
