#include "tests/tools/ToolTest.h"
#include "tools/preview/doctor/Diagnosis.h"

#include <utility>

namespace vantrel::tests {
namespace {

using namespace vantrel::tools;

constexpr wchar_t ours[] = LR"(C:\V\Vantrel64.dll)";
constexpr wchar_t other[] = LR"(C:\W\Vantrel64.dll)";
constexpr auto thumbnail = static_cast<std::size_t>(HandlerKind::Thumbnail);
constexpr auto icon = static_cast<std::size_t>(HandlerKind::Icon);

// Registered for the user, and nothing wrong.
DoctorFacts SoundFacts() {
    DoctorFacts facts;
    for (const RegistrationValue& expected : ExpectedRegistration()) {
        const RegistryText text{ERROR_SUCCESS, expected.data.empty() ? ours : expected.data};
        facts.values.push_back({expected, expected.isForMachine ? RegistryText{} : text,
                                expected.isForMachine ? text : RegistryText{}});
    }
    facts.servers = {{.path = ours}};
    facts.ownLibrary = ours;
    for (std::size_t i = 0; i < facts.classes.size(); ++i)
        facts.classes[i] = {.created = S_OK, .answer = ClassOf(allHandlers[i]).classId};
    facts.files = {{.shown = L"a.zmi", .width = 48, .height = 1},
                   {.shown = L"B.ZMI", .width = 40, .height = 30}};
    return facts;
}

void MoveToMachine(DoctorFacts& facts) {
    for (ValueFacts& value : facts.values)
        value.machine = value.Effective(), value.user = {};
}

// The first class's values of the registration come first: description, server, threading model, binding.
enum { description, server, threading, binding };

struct State {
    const char* name;
    void (*make)(DoctorFacts& facts);
    std::vector<std::wstring> findings; // "health text. Fix: fix", in parts, of those that are not in order
};

const State states[] = {
    {"for the user", [](auto&) {}, {}},
    {"for the machine", [](auto& f) { MoveToMachine(f), f.isExplorerElevated = true; }, {}},
    {"shadow",
     [](auto& f) {
         f.isExplorerElevated = true;
         for (ValueFacts& v : f.values)
             v.machine = v.Effective();
     },
     {LR"(warn this user's registration (HKCU) hides 27 of the machine's values (HKLM). Fix: run regsvr32 /u "C:\V\)"}},
    {"another library's shadow",
     [](auto& f) {
         MoveToMachine(f), f.values[server].user = {ERROR_SUCCESS, other}, f.servers.push_back({other});
     },
     {LR"(fail this user's registration (HKCU) hides 1 of the machine's values (HKLM); HKCU names C:\W\)",
      LR"(fail the five classes come from two libraries, C:\V\Vantrel64.dll and C:\W\Vantrel64.dll. Fix: run regsvr32 /u)"}},
    {"a shadow of what is gone",
     [](auto& f) {
         MoveToMachine(f), f.values[server].user = {ERROR_SUCCESS, other},
                           f.values[threading].user = {ERROR_SUCCESS};
         f.servers.push_back({other, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)});
     },
     {L"hides 2 of the machine's values (HKLM); HKCU names",
      LR"(fail C:\W\Vantrel64.dll, registered for Vantrel Thumbnail Provider, is not found. Fix: run regsvr32 /u)"}},
    {"none",
     [](auto& f) {
         for (ValueFacts& v : f.values)
             v.user = {};
         f.servers = {};
     },
     {LR"(fail the library is registered neither for this user (HKCU) nor for the machine (HKLM). Fix: install)"}},
    {"one missing",
     [](auto& f) { f.values[threading].user = {}; },
     {LR"(\InProcServer32 [ThreadingModel] is missing. Fix: run regsvr32 "C:\V\Vantrel64.dll")"}},
    {"two of another type, for the machine",
     [](auto& f) {
         MoveToMachine(f),
             f.values[description].machine = f.values[threading].machine = {ERROR_UNSUPPORTED_TYPE};
     },
     {LR"(fail 2 registry values are missing or wrong, the first: HKLM\Software\Classes\CLSID\{E1A95D7C-0B48-4c63-)"
      LR"(9F1D-2A6B8C04E79F} [default value] is of the wrong type, not a string. Fix: repair the installation)"}},
    {"no property handler",
     [](auto& f) { f.values.back().machine = {}; },
     {LR"(\.zmi [default value] is missing: Explorer shows no title, dimensions and bit depth. Fix: run regsvr32 )"
      LR"("C:\V\Vantrel64.dll" as administrator)"}},
    {"another binding",
     [](auto& f) { f.values[binding].user.text = L"{0}", f.classes[thumbnail].answer = L"{0}"; },
     {LR"([default value] is "{0}", not "{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}". Fix: run)"}},
    {"ARM64", [](auto& f) { f.isArm64 = true; }, {L"Explorer can't load an x64 library. Fix: "}},
    {"elevated Explorer",
     [](auto& f) { f.isExplorerElevated = true; },
     {L"fail Explorer runs as administrator, where COM ignores what is registered for one user only. Fix: "
      L"install"}},
    {"no UAC",
     [](auto& f) { f.isExplorerElevated = f.isUacOff = true; },
     {L"fail User Account Control is off, so"}},
    {"elevated doctor",
     [](auto& f) {
         f.isDoctorElevated = true;
         f.classes[icon].created = REGDB_E_CLASSNOTREG;
     },
     {L"what Explorer gets was not checked. Fix: run the doctor in an ordinary command prompt"}},
    {"COM fails",
     [](auto& f) {
         for (ClassFacts& one : f.classes)
             one.created = E_ACCESSDENIED;
     },
     {L"fail 5 classes can't be created, the first: COM can't create the class Vantrel Thumbnail "
      L"Provider: "}},
    {"library gone",
     [](auto& f) { f.ownLibrary.reset(), f.servers[0].loaded = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND); },
     {LR"(fail C:\V\Vantrel64.dll, registered for 5 classes, is not found. Fix: run regsvr32 "...\Vantrel64.dll")"}},
    {"32 bits",
     [](auto& f) { f.servers[0].loaded = HRESULT_FROM_WIN32(ERROR_BAD_EXE_FORMAT); },
     {L"registered for 5 classes, is not a 64-bit library. Fix: install Vantrel64 again"}},
    {"two libraries",
     [](auto& f) { f.values[server].user.text = other, f.servers.push_back({other}); },
     {LR"(fail the five classes come from two libraries, C:\V\Vantrel64.dll and C:\W\Vantrel64.dll. Fix: run regsvr32 "C:\V\)"}},
    {"foreign library",
     [](auto& f) {
         f.values[server].user.text = L"x.dll";
         f.servers.push_back({.path = L"x.dll", .created = {CLASS_E_CLASSNOTAVAILABLE}});
     },
     {L"fail x.dll, registered for Vantrel Thumbnail Provider, is another library, not Vantrel64. Fix: run "
      L"regsvr32"}},
    {"broken class",
     [](auto& f) { f.servers[0].created[icon] = E_OUTOFMEMORY; },
     {L"can't create the class Vantrel Extract Icon: "}},
    {"other copy beside the program",
     [](auto& f) { f.ownLibrary = other; },
     {LR"(warn the registered library is C:\V\Vantrel64.dll, not C:\W\Vantrel64.dll. Fix: run regsvr32 "C:\W\)"}},
    {"other copy given",
     [](auto& f) { f.givenLibrary = other, f.servers.push_back({other}), f.values[threading].user = {}; },
     {LR"([ThreadingModel] is missing. Fix: run regsvr32 "C:\W\)",
      LR"(fail the registered library is C:\V\Vantrel64.dll, not C:\W\Vantrel64.dll. Fix: run regsvr32 "C:\W\)"}},
    {"foreign library given",
     [](auto& f) {
         f.givenLibrary = L"x.dll";
         f.servers.push_back({.path = L"x.dll", .created = {CLASS_E_CLASSNOTAVAILABLE}});
     },
     {L"fail x.dll is another library, not Vantrel64. Fix: give the path of Vantrel64.dll with --dll"}},
    {"a program's own handler",
     [](auto& f) {
         f.classes[icon].answer.reset();
         f.classes[thumbnail].answer = L"{0}";
         f.programs = {{.progId = L"Y", .handlers = {L"{0}", L"{1}", L"{2}"}},
                       {.progId = L"Z", .handlers = {L"{3}"}}};
     },
     {LR"(fail the system uses another thumbnail handler for .zmi, {0} of the program Y. Fix: choose another )",
      LR"(fail the system uses another icon handler for .zmi, {2} of the program Y. Fix: choose another )"}},
    {"no handler found",
     [](auto& f) { f.classes[thumbnail].answer = L""; },
     {L"fail the system finds no thumbnail handler for .zmi. Fix: run regsvr32"}},
    {"icons of programs",
     [](auto& f) {
         f.programs = {{.progId = L"X", .defaultIcon = L"%1"}, {.progId = L"Y", .defaultIcon = L"y.ico"}};
     },
     {LR"(warn the program Y has an icon of its own, which Explorer may show instead. Fix: if it does, delete )"}},
    {"settings",
     [](auto& f) {
         f.settings = {LR"(HKCU\a\IconsOnly)", LR"(HKLM\b\EnforceShellExtensionSecurity)"};
     },
     {LR"(fail Explorer shows icons instead of thumbnails (HKCU\a\IconsOnly). Fix: in Explorer's)",
      L"fail a policy lets only approved shell extensions load"}},
    {"approved",
     [](auto& f) {
         f.settings = {LR"(HKLM\b\EnforceShellExtensionSecurity)"};
         for (ClassFacts& one : f.classes)
             one.isApproved = true;
     },
     {}},
    {"blocked",
     [](auto& f) { f.classes[icon].blockingKey = LR"(HKCU\x)"; },
     {LR"(fail the class Vantrel Extract Icon is blocked. Fix: delete the value {5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27} in HKCU\x)"}},
    {"files",
     [](auto& f) {
         f.files = {{.shown = L"a.zmi", .attributes = 0x400000, .fault = L"?"},
                    {.shown = L"b.zmi", .attributes = FILE_ATTRIBUTE_OFFLINE},
                    {.shown = L"c.zmi", .isFolder = true, .unread = L"c.zmi: empty"},
                    {.shown = L"d.zmi", .fault = L"cut"},
                    {.shown = L"e.zmi", .width = 5, .height = 241},
                    {.shown = L"f.zmi", .width = 257, .height = 1},
                    {.shown = L"zmi.dat", .width = 1, .height = 1}};
     },
     {L"warn a.zmi: its content is not on this machine", L"warn b.zmi: its content is not on this machine",
      L"warn c.zmi: empty. Fix: name", L"fail d.zmi: cut. Fix: make the file again",
      L"warn e.zmi: 5 x 241 pixels is too thin for thumbnails smaller than 49 pixels. Fix: crop",
      L"fail f.zmi: 257 x 1 pixels is too thin for thumbnails smaller than 257 pixels",
      L"warn zmi.dat: the Shell goes by the extension"}},
};

TEST(DiagnosisTest, NamesTheFaultAndTheFixOfEachState) {
    for (const State& state : states) {
        SCOPED_TRACE(state.name);
        DoctorFacts facts = SoundFacts();
        state.make(facts);
        std::vector<std::wstring> found;
        for (const auto& [health, text, fix] : Diagnose(facts))
            if (health != Health::Ok)
                found.push_back((health == Health::Warn ? L"warn " : L"fail ") + text + L". Fix: " + fix);
        EXPECT_EQ(state.findings.size(), found.size());
        found.resize(state.findings.size());
        for (std::size_t i = 0; i < found.size(); ++i)
            EXPECT_TRUE(found[i].find(state.findings[i]) != std::wstring::npos)
                << testing::PrintToString(found[i]);
    }
}

// A value of the real registry, which a child process can't be kept from; it is put back.
class RealValue {
public:
    RealValue(HKEY root, const wchar_t* key, const wchar_t* name) : root_(root), key_(key), name_(name) {
        HKEY opened = nullptr;
        hadKey_ = RegOpenKeyExW(root, key, 0, KEY_READ, &opened) == ERROR_SUCCESS;
        RegCloseKey(opened);
        hadValue_ =
            RegGetValueW(root, key, name, RRF_RT_ANY | RRF_NOEXPAND, &type_, data_, &size_) == ERROR_SUCCESS;
    }
    RealValue(const RealValue&) = delete;
    RealValue& operator=(const RealValue&) = delete;
    ~RealValue() {
        if (hadValue_)
            RegSetKeyValueW(root_, key_, name_, type_, data_, size_);
        else if (hadKey_)
            RegDeleteKeyValueW(root_, key_, name_);
        else
            RegDeleteKeyW(root_, key_);
    }

    std::wstring Text() const { return hadValue_ ? data_ : L""; }
    void Set(const wchar_t* text) const {
        RegSetKeyValueW(root_, key_, name_, REG_SZ, text, static_cast<DWORD>(std::wcslen(text) * 2 + 2));
    }
    void Set(DWORD number) const { RegSetKeyValueW(root_, key_, name_, REG_DWORD, &number, sizeof number); }

private:
    HKEY root_;
    const wchar_t* key_;
    const wchar_t* name_;
    bool hadKey_;
    bool hadValue_;
    DWORD type_ = REG_NONE;
    wchar_t data_[1024] = L"";
    DWORD size_ = sizeof data_;
};

using DoctorTest = ToolTest;

TEST_F(DoctorTest, SeesTheSystem) {
    const auto regsvr32 = [this](const Arguments& arguments) {
        return Run(L"regsvr32.exe", arguments).exitCode;
    };
    const auto expectTold = [this](DWORD exitCode, Arguments arguments,
                                   const std::vector<std::string>& lines) {
        arguments.insert(arguments.begin(), L"--doctor");
        const ToolRun run = Run(Beside(L"zmi-preview.exe"), arguments);
        run.Ended(exitCode);
        for (const std::string& line : lines)
            EXPECT_TRUE(Contains(run.out, line)) << line << "\n not in \n" << run.out;
    };
    const std::wstring library = Beside(L"Vantrel64.dll");
    const RealValue machine(HKEY_LOCAL_MACHINE, LR"(Software\Classes\.zmi)", L"QuickTip");
    const RealValue properties(
        HKEY_LOCAL_MACHINE,
        LR"(Software\Microsoft\Windows\CurrentVersion\PropertySystem\PropertyHandlers\.zmi)", nullptr);
    const RealValue server(HKEY_CURRENT_USER,
                           LR"(Software\Classes\CLSID\{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}\InProcServer32)",
                           nullptr);
    const RealValue threading(
        HKEY_CURRENT_USER, LR"(Software\Classes\CLSID\{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}\InProcServer32)",
        L"ThreadingModel");
    const RealValue iconsOnly(
        HKEY_CURRENT_USER, LR"(Software\Microsoft\Windows\CurrentVersion\Explorer\Advanced)", L"IconsOnly");
    if (!machine.Text().empty() || regsvr32({L"/s", library}) != 0)
        GTEST_SKIP() << "takes an administrator's rights, and no installed library";

    Write(L"good.zmi", ZmiBuilder{.frames = {{4, 3}}}.Build());
    Write(L"mode3.zmi", ZmiBuilder{.mode = 3, .frames = {{4, 3}}}.Build());
    Write(L"frameless.zmi", ZmiBuilder{.frameTable = true}.Build());
    Write(L"thin.zmi", ZmiBuilder{.frames = {{300, 1}}}.Build());
    std::filesystem::create_directory(folder_ / L"empty");
    iconsOnly.Set(DWORD{0});
    expectTold(0, {L"good.zmi"},
               {"values are in place: 27 for this user (HKCU), 1 for the machine (HKLM)",
                "Vantrel64.dll creates the five classes", "no setting and no policy", "[ok]   good.zmi",
                "\nNothing is wrong here."});
    expectTold(1, {L"--json", L"empty", L"mode3.zmi", L"frameless.zmi", L"thin.zmi", L"none.zmi"},
               {R"({"checks": [)",
                R"({"health": "warn", "text": "empty: the folder holds no .zmi file", "fix")",
                "mode3.zmi: frame 1 is in pixel mode 3",
                "frameless.zmi: the frame table at offset 167 holds no frame",
                "thin.zmi: 300 x 1 pixels is too thin",
                R"("none.zmi: not found", "fix": "check the name and the folder"})"});
    machine.Set(L"prop:Dimensions");
    server.Set(L"shell32.dll");
    threading.Set(DWORD{1});
    iconsOnly.Set(DWORD{1});
    expectTold(1, {},
               {"[ThreadingModel] is of the wrong type", "hides 1 of the machine's values (HKLM)",
                "shell32.dll, registered for Vantrel Thumbnail Provider, is another library",
                "\n       Fix: ", R"(Explorer\Advanced\IconsOnly))"});
    EXPECT_EQ(0u, regsvr32({L"/s", L"/u", library}));
    iconsOnly.Set(DWORD{0});
    if (!server.Text().empty()) {
        EXPECT_EQ(0u, regsvr32({L"/s", server.Text()}));
    }
}

} // namespace
} // namespace vantrel::tests
