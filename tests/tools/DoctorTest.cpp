#include "tests/host/ScratchRegistry.h"
#include "tests/tools/ToolTest.h"
#include "tools/preview/doctor/Diagnosis.h"

namespace vantrel::tests {
namespace {

using namespace vantrel::tools;

constexpr wchar_t ours[] = LR"(C:\V\Vantrel64.dll)";
constexpr wchar_t other[] = LR"(C:\W\Vantrel64.dll)";

// The first class's values come first: description, server, threading model, binding.
enum { description, server, threading, binding };
enum { thumbnail, extract, icon };

// Registered for the user, with nothing wrong.
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
    facts.infoTip = L"prop:System.ItemTypeText;System.Title;System.Image.Dimensions;System.Image.BitDepth;"
                    L"System.Size;System.DateModified";
    facts.files = {{.shown = L"a.zmi", .width = 48, .height = 1},
                   {.shown = L"B.ZMI", .width = 4, .height = 3}};
    return facts;
}

void CopyToMachine(DoctorFacts& facts, bool isMove) {
    for (ValueFacts& value : facts.values) {
        value.machine = value.Effective();
        value.user = isMove ? RegistryText{} : value.user;
    }
}

// A change to healthy facts, and parts of "health text. Fix: fix" of all findings that are not [ok].
const struct {
    void (*change)(DoctorFacts& f);
    std::vector<std::wstring> findings;
} states[] = {
    {[](auto&) {}, {}},
    {[](auto& f) { CopyToMachine(f, true), f.isExplorerElevated = true; }, {}},
    {[](auto& f) { f.isArm64 = true; },
     {L"fail this is an ARM64 machine, whose Explorer can't load an x64 library. Fix: build Vantrel64 on "
      L"this "
      L"machine"}},
    {[](auto& f) { f.isExplorerElevated = true; },
     {L"fail Explorer runs as administrator, where COM ignores what is registered for one user only. Fix: "
      L"install"}},
    {[](auto& f) { f.isExplorerElevated = f.isDoctorElevated = f.isUacOff = true; }, {}},
    {[](auto& f) {
         f.isExplorerElevated = f.isDoctorElevated = f.isUacOff = true;
         f.classes[icon].created = REGDB_E_CLASSNOTREG;
     },
     {L"fail User Account Control is off, so Explorer runs as administrator, where COM ignores"}},
    {[](auto& f) { f.isDoctorElevated = true, f.classes[icon].created = REGDB_E_CLASSNOTREG; },
     {L"warn this program runs as administrator"}},
    {[](auto& f) {
         CopyToMachine(f, true);
         f.isDoctorElevated = true, f.classes[icon].created = REGDB_E_CLASSNOTREG;
     },
     {L"fail Windows can't load the icon handler: "}},
    {[](auto& f) {
         for (ValueFacts& value : f.values)
             value.user = {};
         f.servers = {}, f.infoTip = L"";
     },
     {L"fail the library is registered neither for this user (HKCU) nor for the machine (HKLM). Fix: "
      L"install"}},
    {[](auto& f) { f.values.back().machine = {}; },
     {LR"([default value] is missing: Explorer shows no title, dimensions and bit depth. Fix: run regsvr32 "C:\V\)"
      LR"(Vantrel64.dll" as administrator)"}},
    {[](auto& f) { f.values[description].user = {ERROR_UNSUPPORTED_TYPE}, f.values[threading].user = {}; },
     {LR"(fail 2 registry values are missing or wrong, the first: HKCU\Software\Classes\CLSID\{E1A95D7C-0B48-4c63-)"
      LR"(9F1D-2A6B8C04E79F} [default value] is of the wrong type, not a string. Fix: run regsvr32)"}},
    {[](auto& f) { CopyToMachine(f, true), f.values[threading].machine = {ERROR_UNSUPPORTED_TYPE}; },
     {LR"([ThreadingModel] is of the wrong type, not a string. Fix: as administrator, in the installer's folder, run msi)"
      L"exec /i Vantrel64-" VANTREL_VERSION L"-x64.msi REINSTALL=ALL REINSTALLMODE=amus; install it if"}},
    {[](auto& f) { f.values[binding].user.text = f.classes[thumbnail].answer.emplace(L"{0}"); },
     {LR"([default value] is "{0}", not "{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}". Fix: run)"}},
    {[](auto& f) { CopyToMachine(f, false), f.isExplorerElevated = true; },
     {LR"(warn this user's registration (HKCU) hides 27 of the machine-wide registry values (HKLM). Fix: run regsvr32 /u "C:\V\)"}},
    {[](auto& f) { CopyToMachine(f, false), f.values[threading].user.text = L"Both"; },
     {LR"(fail this user's registration (HKCU) hides 27 of the machine-wide registry values (HKLM); HKCU\Software\Classes\CLSID\{E)"
      LR"(1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}\InProcServer32 [ThreadingModel] is "Both", not "Apartment". Fix: run )"
      LR"(regsvr32 /u)"}},
    {[](auto& f) {
         CopyToMachine(f, true), f.values[server].user = {ERROR_SUCCESS, other};
         f.servers.push_back({other});
     },
     {LR"(fail this user's registration (HKCU) hides 1 of the machine-wide registry values (HKLM); HKCU names C:\W\)",
      LR"(come from two libraries, C:\V\Vantrel64.dll and C:\W\Vantrel64.dll. Fix: run regsvr32 /u)"}},
    {[](auto& f) {
         CopyToMachine(f, true), f.values[server].user = {ERROR_SUCCESS, other};
         f.values[threading].user = {ERROR_SUCCESS};
         f.servers.push_back({other, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)});
     },
     {L"hides 2 of the machine-wide registry values (HKLM); HKCU names",
      LR"(fail C:\W\Vantrel64.dll, registered for the thumbnail handler, is not found. Fix: run regsvr32 /u)"}},
    {[](auto& f) { f.values[server].user.text = other, f.servers.push_back({other}); },
     {LR"(fail the five handlers come from two libraries, C:\V\Vantrel64.dll and C:\W\Vantrel64.dll. Fix: run)"}},
    {[](auto& f) {
         f.values[server].user.text = LR"(c:\v\VANTREL64.DLL)";
         f.ownLibrary = f.givenLibrary = LR"(c:\v\vantrel64.dll)";
     },
     {}},
    {[](auto& f) { f.values[server].user.text = L"Vantrel64.dll", f.servers.push_back({L"Vantrel64.dll"}); },
     {L"fail Vantrel64.dll is registered without its folder for the thumbnail handler, so what Windows "
      L"finds depends on the program. Fix: run regsvr32"}},
    {[](auto& f) { f.servers[0].created[icon] = f.classes[icon].created.emplace(E_OUTOFMEMORY); },
     {L"registered for all five handlers, can't create the icon handler: "}},
    {[](auto& f) { f.ownLibrary.reset(), f.servers[0].loaded = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND); },
     {LR"(fail C:\V\Vantrel64.dll, registered for all five handlers, is not found. Fix: run regsvr32 "...\Vantrel64.dll")"}},
    {[](auto& f) { f.servers[0].loaded = HRESULT_FROM_WIN32(ERROR_BAD_EXE_FORMAT); },
     {L"registered for all five handlers, is not a 64-bit library. Fix: replace it with the one in "
      L"Vantrel64-"}},
    {[](auto& f) { CopyToMachine(f, true), f.servers[0].created[thumbnail] = CLASS_E_CLASSNOTAVAILABLE; },
     {L"registered for all five handlers, is another library, not Vantrel64. Fix: as administrator, in the "
      L"installer's folder"}},
    {[](auto& f) { f.ownLibrary = other; },
     {LR"(warn the registered library is C:\V\Vantrel64.dll, not C:\W\Vantrel64.dll. Fix: run regsvr32 "C:\W\)"}},
    {[](auto& f) { f.givenLibrary = other, f.servers.push_back({other}), f.values[threading].user = {}; },
     {LR"([ThreadingModel] is missing. Fix: run regsvr32 "C:\W\)",
      LR"(fail the registered library is C:\V\Vantrel64.dll, not C:\W\Vantrel64.dll. Fix: run regsvr32 "C:\W\)"}},
    {[](auto& f) {
         f.givenLibrary = L"x.dll";
         f.servers.push_back({.path = L"x.dll", .created = {CLASS_E_CLASSNOTAVAILABLE}});
         f.values[threading].user = {};
     },
     {LR"([ThreadingModel] is missing. Fix: run regsvr32 "C:\V\)",
      L"fail x.dll is another library, not Vantrel64. Fix: check the path after --dll"}},
    {[](auto& f) { f.classes[thumbnail].created = f.classes[icon].created = E_ACCESSDENIED; },
     {L"fail 2 handlers can't be loaded, the first: Windows can't load the thumbnail handler: "}},
    {[](auto& f) { f.classes[thumbnail].answer = L""; },
     {L"fail the system finds no thumbnail handler for .zmi. Fix: run regsvr32"}},
    {[](auto& f) {
         f.classes[thumbnail].answer = L"{0}", f.classes[icon].answer.reset();
         f.programs = {{.progId = L"Y", .handlers = {L"{0}", L"{1}", L"{2}"}},
                       {.progId = L"Z", .handlers = {L"{3}"}}};
     },
     {L"fail the system uses another thumbnail handler for .zmi, {0} of the program Y. Fix: choose another "
      L"program",
      LR"(fail the system uses another icon handler for .zmi, {2} of the program Y)"}},
    {[](auto& f) {
         f.programs = {{.progId = L"Y", .defaultIcon = L"y.ico"}, {.progId = L"Z", .defaultIcon = L"%1"}};
     },
     {L"warn the program Y has its own icon, which Explorer may show instead. Fix: if it does, choose "
      L"another"}},
    {[](auto& f) { f.infoTip = L"prop:System.Size"; },
     {L"warn Explorer shows other properties for .zmi files than Vantrel64's, \"prop:System.Size\". Fix: "
      L"install "
      L"Vantrel64 with its installer"}},
    {[](auto& f) { CopyToMachine(f, true), f.infoTip = L""; },
     {L"for .zmi files than Vantrel64's, \"\". Fix: as administrator, in the installer's folder"}},
    {[](auto& f) { CopyToMachine(f, true), f.infoTip = L"x", f.programs = {{L"Y"}}; },
     {L"for .zmi files than Vantrel64's, \"x\". Fix: choose another program"}},
    {[](auto& f) { f.settings = {LR"(HKCU\a\IconsOnly)"}; },
     {LR"(fail Explorer shows icons instead of thumbnails (HKCU\a\IconsOnly). Fix: in Explorer's)"}},
    {[](auto& f) {
         f.settings = {LR"(HKLM\b\EnforceShellExtensionSecurity)"};
         for (ClassFacts& one : f.classes)
             one.isApproved = &one != &f.classes.back();
     },
     {L"fail a policy lets only approved shell extensions load"}},
    {[](auto& f) {
         f.settings = {LR"(HKLM\b\EnforceShellExtensionSecurity)"};
         for (ClassFacts& one : f.classes)
             one.isApproved = true;
     },
     {}},
    {[](auto& f) { f.classes[icon].blockingKey = LR"(HKCU\x)"; },
     {LR"(is blocked. Fix: delete the value {5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27} in HKCU\x)"}},
    {[](auto& f) {
         f.files = {{.shown = L"a.zmi", .attributes = 0x400000, .fault = L"?"},
                    {.shown = L"b.zmi", .attributes = FILE_ATTRIBUTE_OFFLINE},
                    {.shown = L"c.zmi", .isFolder = true, .unread = L"c.zmi: empty"},
                    {.shown = L"d.zmi", .fault = L"cut"},
                    {.shown = L"e.zmi", .width = 5, .height = 241},
                    {.shown = L"f.zmi", .width = 257, .height = 1},
                    {.shown = L"zmi.dat", .width = 1, .height = 1}};
     },
     {L"warn a.zmi: its content is not on this machine", L"warn b.zmi: its content is not on this machine",
      L"warn c.zmi: empty. Fix: name", L"fail d.zmi: cut. Fix: recreate the file",
      L"warn e.zmi: 5 x 241 pixels is too thin for thumbnails smaller than 49 pixels. Fix: crop",
      L"fail f.zmi: 257 x 1 pixels is too thin for thumbnails smaller than 257 pixels",
      L"warn zmi.dat: the Shell goes by the extension"}},
};

std::vector<std::wstring> Told(const DoctorFacts& facts) {
    std::vector<std::wstring> told;
    for (const auto& [health, text, fix] : Diagnose(facts))
        if (health != Health::Ok)
            told.push_back((health == Health::Warn ? L"warn " : L"fail ") + text + L". Fix: " + fix);
    return told;
}

TEST(DiagnosisTest, NamesTheFaultAndTheFixOfEachState) {
    for (const auto& [change, findings] : states) {
        DoctorFacts facts = SoundFacts();
        change(facts);
        const std::vector<std::wstring> told = Told(facts);
        EXPECT_TRUE(std::ranges::equal(
            told, findings,
            [](const auto& whole, const auto& part) { return whole.find(part) != std::wstring::npos; }))
            << testing::PrintToString(told) << "\n is not \n"
            << testing::PrintToString(findings);
    }
}

// What is in place is said only where the library can be loaded, too.
TEST(DiagnosisTest, CountsTheValuesInPlace) {
    const auto first = [](const DoctorFacts& facts) { return Diagnose(facts).front(); };
    DoctorFacts facts = SoundFacts();
    EXPECT_EQ(L"all registry values are in place: 27 for this user (HKCU), 1 for the machine (HKLM)",
              first(facts).text);
    CopyToMachine(facts, true);
    EXPECT_EQ(L"all registry values are in place: 0 for this user (HKCU), 28 for the machine (HKLM)",
              first(facts).text);
    facts.servers[0].loaded = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Health::Fail, first(facts).health);
}

using DoctorTest = ToolTest;

TEST_F(DoctorTest, SeesRegistryAndFiles) {
    Write(L"mode3.zmi", ZmiBuilder{.mode = 3, .frames = {{4, 3}}}.Build());
    Write(L"frameless.zmi", ZmiBuilder{.frameTable = true}.Build());
    Write(L"thin.zmi", ZmiBuilder{.frames = {{300, 1}}}.Build());
    std::filesystem::create_directory(folder_ / L"empty");

    const ScratchRegistry registry;
    const auto set = [](HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& text) {
        const auto size = static_cast<DWORD>(text.size() * 2 + 2);
        RegSetKeyValueW(root, key.c_str(), name, text == L"1" ? REG_DWORD : REG_SZ, text.c_str(), size);
    };
    const std::wstring windows = LR"(Software\Microsoft\Windows\CurrentVersion\)",
                       classes = LR"(Software\Classes\)";
    for (const auto& [key, name, data, isForMachine] : ExpectedRegistration())
        set(isForMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER, key, name,
            data.empty() ? Beside(L"Vantrel64.dll") : data);
    set(HKEY_CURRENT_USER, classes + LR"(CLSID\{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}\InProcServer32)",
        nullptr, Beside(L"VANTREL64.DLL")); // another spelling, not another library
    set(HKEY_CURRENT_USER, classes + L".zmi", L"QuickTip", L"1");
    set(HKEY_LOCAL_MACHINE, classes + L".zmi", L"TileInfo", L"prop:Dimensions;Size");
    set(HKEY_CURRENT_USER, classes + LR"(CLSID\{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}\InProcServer32)",
        nullptr, L"shell32.dll");
    set(HKEY_CURRENT_USER, windows + LR"(Explorer\FileExts\.zmi\UserChoiceLatest\ProgId)", L"ProgId", L"Y");
    set(HKEY_LOCAL_MACHINE, classes + LR"(Y\DefaultIcon)", nullptr, L"y.ico");
    set(HKEY_LOCAL_MACHINE, windows + LR"(Policies\Explorer)", L"DisableThumbnails", L"1");
    set(HKEY_CURRENT_USER, windows + LR"(Shell Extensions\Blocked)",
        L"{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}", L"");
    const DoctorFacts facts = GatherFacts(
        {}, {folder_ / L"empty", folder_ / L"mode3.zmi", folder_ / L"frameless.zmi", folder_ / L"thin.zmi"});
    std::wstring told;
    for (const std::wstring& line : Told(facts))
        told += line + L'\n';
    for (const wchar_t* part :
         {L"[QuickTip] is of the wrong type", L"hides 1 of the machine-wide registry values",
          L"fail shell32.dll is registered without its folder for the thumbnail handler",
          L"the program Y has its own icon", L"fail a policy turns thumbnails off (HKLM",
          L"icon handler is blocked", L"empty: the folder contains no .zmi files",
          L"mode3.zmi: frame 1 is in pixel mode 3",
          L"frameless.zmi: the frame table at offset 167 contains no frames", L"300 x 1 pixels is too thin"})
        EXPECT_TRUE(told.find(part) != std::wstring::npos) << testing::PrintToString(part);

    EXPECT_EQ(std::wstring::npos, told.find(L"two libraries"));
    const ToolRun run = Run(Beside(L"zmi-preview.exe"), {L"--doctor", L"none.zmi"});
    run.Ended(1);
    EXPECT_TRUE(Contains(run.out, "[fail] none.zmi: not found\n       Fix: check the name and the folder\n"));
    EXPECT_FALSE(Contains(run.out, "Nothing is wrong"));
    EXPECT_TRUE(Contains(
        Run(Beside(L"zmi-preview.exe"), {L"--doctor", L"--json", L"none.zmi"}).out,
        R"({"health": "fail", "text": "none.zmi: not found", "fix": "check the name and the folder"}], )"
        R"("ok": false})"));
}

} // namespace
} // namespace vantrel::tests
