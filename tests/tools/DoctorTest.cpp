#include "tests/host/ScratchRegistry.h"
#include "tests/tools/ToolTest.h"
#include "tools/preview/doctor/Diagnosis.h"
#include "tools/terminal/Failure.h"

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
    facts.values = ExpectedValues();
    for (ValueFacts& value : facts.values) {
        RegistryText& found = value.isForMachine ? value.machine : value.user;
        found = {ERROR_SUCCESS, value.wanted.empty() ? ours : value.wanted};
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

void Approve(DoctorFacts& facts) {
    facts.settings = {LR"(HKLM\b\EnforceShellExtensionSecurity)"};
    for (ClassFacts& one : facts.classes)
        one.isApproved = true;
}

// A change to healthy facts, and of all findings that are not [ok] the health, text and fix; "*" is anything.
const struct {
    void (*change)(DoctorFacts& f);
    std::vector<std::wstring> findings;
} states[] = {
    {[](auto&) {}, {}},
    {[](auto& f) { f.isArm64 = true; }, {L"fail *ARM64 machine*Fix: build Vantrel64 on this machine"}},

    // Elevation
    {[](auto& f) { CopyToMachine(f, true), f.isExplorerElevated = true; }, {}},
    {[](auto& f) { f.isExplorerElevated = true; },
     {L"fail Explorer runs as administrator*for one user only. Fix: install"}},
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

    // Registry values
    {[](auto& f) {
         for (ValueFacts& value : f.values)
             value.user = {};
         f.servers = {}, f.infoTip = L"";
     },
     {L"fail the library is registered neither*(HKCU) nor*(HKLM). Fix: install"}},
    {[](auto& f) { f.values.back().machine = {}; },
     {LR"([default value] is missing: Explorer shows no title*regsvr32 "C:\V\Vantrel64.dll" as administrator)"}},
    {[](auto& f) { f.values[description].user = {ERROR_UNSUPPORTED_TYPE}, f.values[threading].user = {}; },
     {LR"(fail 2 registry values are*the first: HKCU\*\{E1A95D7C*} [default value] is of the wrong type*regsvr32)"}},
    {[](auto& f) { CopyToMachine(f, true), f.values[threading].machine = {ERROR_UNSUPPORTED_TYPE}; },
     {L"[ThreadingModel] is of the wrong type*Fix: as administrator, *run msiexec /i "
      L"Vantrel64-" VANTREL_VERSION L"-x64.msi REINSTALL=ALL REINSTALLMODE=amus; install it if"}},
    {[](auto& f) { f.values[binding].user.text = f.classes[thumbnail].answer.emplace(L"{0}"); },
     {LR"([default value] is "{0}", not "{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}". Fix: run)"}},

    // Of the user, in front of the machine's
    {[](auto& f) { CopyToMachine(f, false), f.isExplorerElevated = true; },
     {LR"(warn this user's registration (HKCU) hides 27 of*(HKLM). Fix: run regsvr32 /u "C:\V\)"}},
    {[](auto& f) { CopyToMachine(f, false), f.values[threading].user.text = L"Both"; },
     {LR"(fail *hides 27 of*; HKCU\*\InProcServer32 [ThreadingModel] is "Both", not "Apartment". Fix: run regsvr32 /u)"}},
    {[](auto& f) {
         CopyToMachine(f, true), f.values[server].user = {ERROR_SUCCESS, other};
         f.servers.push_back({other});
     },
     {LR"(fail *hides 1 of*; HKCU names C:\W\)",
      LR"(two libraries, C:\V\Vantrel64.dll and C:\W\Vantrel64.dll. Fix: run regsvr32 /u)"}},
    {[](auto& f) {
         CopyToMachine(f, true), f.values[server].user = {ERROR_SUCCESS, other};
         f.values[threading].user = {ERROR_SUCCESS};
         f.servers.push_back({other, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)});
     },
     {L"hides 2 of*; HKCU names",
      LR"(fail C:\W\Vantrel64.dll, registered for the thumbnail handler, is not found. Fix: run regsvr32 /u)"}},

    // Libraries
    {[](auto& f) { f.values[server].user.text = other, f.servers.push_back({other}); },
     {LR"(fail the five handlers come from two libraries, C:\V\Vantrel64.dll and C:\W\Vantrel64.dll. Fix: run)"}},
    {[](auto& f) {
         f.values[server].user.text = LR"(c:\v\VANTREL64.DLL)";
         f.ownLibrary = f.givenLibrary = LR"(c:\v\vantrel64.dll)";
     },
     {}},
    {[](auto& f) { f.values[server].user.text = L"Vantrel64.dll", f.servers.push_back({L"Vantrel64.dll"}); },
     {L"fail Vantrel64.dll is registered without its folder for the thumbnail handler*Fix: run regsvr32"}},
    {[](auto& f) { f.servers[0].created[icon] = f.classes[icon].created.emplace(E_OUTOFMEMORY); },
     {L"registered for all five handlers, can't create the icon handler: "}},
    {[](auto& f) { f.ownLibrary.reset(), f.servers[0].loaded = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND); },
     {LR"(fail C:\V\Vantrel64.dll, *five handlers, is not found. Fix: run regsvr32 "...\Vantrel64.dll")"}},
    {[](auto& f) { f.servers[0].loaded = HRESULT_FROM_WIN32(ERROR_BAD_EXE_FORMAT); },
     {L"is not a 64-bit library. Fix: replace it with the one in Vantrel64-"}},
    {[](auto& f) { CopyToMachine(f, true), f.servers[0].created[thumbnail] = CLASS_E_CLASSNOTAVAILABLE; },
     {L"is another library, not Vantrel64. Fix: as administrator, in the installer's folder"}},
    {[](auto& f) { f.ownLibrary = other; },
     {LR"(warn the registered library is C:\V\*, not C:\W\Vantrel64.dll. Fix: run regsvr32 "C:\W\)"}},
    {[](auto& f) { f.givenLibrary = other, f.servers.push_back({other}), f.values[threading].user = {}; },
     {LR"([ThreadingModel] is missing. Fix: run regsvr32 "C:\W\)",
      LR"(fail the registered library is C:\V\*, not C:\W\Vantrel64.dll. Fix: run regsvr32 "C:\W\)"}},
    {[](auto& f) {
         f.givenLibrary = L"x.dll";
         f.servers.push_back({.path = L"x.dll", .created = {CLASS_E_CLASSNOTAVAILABLE}});
         f.values[threading].user = {};
     },
     {LR"([ThreadingModel] is missing. Fix: run regsvr32 "C:\V\)",
      L"fail x.dll is another library, not Vantrel64. Fix: check the path after --dll"}},

    // Handlers, and what else Explorer shows
    {[](auto& f) { f.classes[thumbnail].created = f.classes[icon].created = E_ACCESSDENIED; },
     {L"fail 2 handlers can't be loaded, the first: Windows can't load the thumbnail handler: "}},
    {[](auto& f) { f.classes[thumbnail].answer = L""; },
     {L"fail the system finds no thumbnail handler for .zmi. Fix: run regsvr32"}},
    {[](auto& f) {
         f.classes[thumbnail].answer = L"{0}", f.classes[icon].answer.reset();
         f.programs = {{L"Y", {L"{0}", L"{1}", L"{2}"}}, {L"Z", {L"{3}"}}};
     },
     {L"fail *another thumbnail handler for .zmi, {0} of the program Y. Fix: choose another program",
      L"fail *another icon handler for .zmi, {2} of the program Y"}},
    {[](auto& f) {
         f.classes[extract].answer.reset(), f.classes[icon].answer.reset();
         f.programs = {{L"Y", {}, L"y.ico"},
                       {L"Z", {L"", ClassOf(HandlerKind::ExtractImage).classId}, L"%1"}};
     },
     {L"warn the program Y has its own icon*Fix: if it does, choose another"}},
    {[](auto& f) { f.infoTip = L"prop:System.Size"; },
     {L"warn *other properties*, \"prop:System.Size\". Fix: install Vantrel64 with its installer"}},
    {[](auto& f) { CopyToMachine(f, true), f.infoTip = L""; },
     {L"other properties*, \"\". Fix: as administrator, in the installer's folder"}},
    {[](auto& f) { CopyToMachine(f, true), f.infoTip = L"x", f.programs = {{L"Y"}}; },
     {L"other properties*, \"x\". Fix: choose another program"}},
    {[](auto& f) { f.settings = {LR"(HKCU\a\IconsOnly)"}; },
     {LR"(fail Explorer shows icons instead of thumbnails (HKCU\a\IconsOnly). Fix: in Explorer's)"}},
    {[](auto& f) { Approve(f), f.classes.back().isApproved = false; },
     {L"fail a policy lets only approved shell extensions load"}},
    {Approve, {}},
    {[](auto& f) { f.classes[icon].blockingKey = LR"(HKCU\x)"; },
     {LR"(is blocked. Fix: delete the value {5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27} in HKCU\x)"}},

    {[](auto& f) {
         f.files = {{.shown = L"a.zmi", .attributes = 0x400000, .fault = L"?"},
                    {.shown = L"b.zmi", .attributes = FILE_ATTRIBUTE_OFFLINE},
                    {.shown = L"c.zmi", .isFolder = true, .unread = L"empty"},
                    {.shown = L"d.zmi", .fault = L"cut"},
                    {.shown = L"e.zmi", .width = 5, .height = 241},
                    {.shown = L"f.zmi", .width = 257, .height = 1},
                    {.shown = L"zmi", .width = 1, .height = 1}};
     },
     {L"warn a.zmi: its content is not on this machine", L"warn b.zmi: its content is not on this machine",
      L"warn c.zmi: empty. Fix: name", L"fail d.zmi: cut. Fix: recreate the file",
      L"warn e.zmi: 5 x 241 pixels is too thin for thumbnails smaller than 49 pixels. Fix: crop",
      L"fail f.zmi: 257 x 1 pixels is too thin for thumbnails smaller than 257 pixels",
      L"warn zmi: the Shell goes by the extension"}},
};

std::vector<std::wstring> Told(const DoctorFacts& facts) {
    std::vector<std::wstring> told;
    for (const auto& [health, text, fix] : Diagnose(facts))
        if (health != Health::Ok)
            told.push_back((health == Health::Warn ? L"warn " : L"fail ") + text + L". Fix: " + fix);
    return told;
}

// Whether the parts between "*" are there, in this order.
bool Matches(const std::wstring& whole, const std::wstring& pattern) {
    std::size_t at = 0;
    for (std::size_t from = 0, end = 0; at != std::wstring::npos && end != std::wstring::npos;
         from = end + 1) {
        end = pattern.find(L'*', from);
        at = whole.find(pattern.substr(from, end - from), at);
    }
    return at != std::wstring::npos;
}

TEST(DiagnosisTest, NamesTheFaultAndTheFixOfEachState) {
    for (const auto& [change, findings] : states) {
        DoctorFacts facts = SoundFacts();
        change(facts);
        const std::vector<std::wstring> told = Told(facts);
        EXPECT_TRUE(std::ranges::equal(told, findings, Matches))
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

void Set(HKEY root, const std::wstring& key, const std::wstring& name, const std::wstring& text) {
    RegSetKeyValueW(root, key.c_str(), name.c_str(), text == L"1" ? REG_DWORD : REG_SZ, text.c_str(),
                    static_cast<DWORD>(text.size() * 2 + 2));
}

struct DoctorTest : ToolTest {
    static void Register(HKEY root) {
        for (const ValueFacts& value : ExpectedValues())
            Set(value.isForMachine ? HKEY_LOCAL_MACHINE : root, value.key, value.name,
                value.wanted.empty() ? Beside(L"Vantrel64.dll") : value.wanted);
    }
};

TEST_F(DoctorTest, FindsEachHandlerForOneUserAndForTheMachine) {
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        const ScratchRegistry registry;
        Register(root);
        HandlerRegistry handlers({});
        for (const HandlerKind kind : allHandlers)
            EXPECT_TRUE(handlers.Create<IUnknown>(kind, L"a.zmi"));
        EXPECT_THROW(handlers.Create<IUnknown>(HandlerKind::Icon, L"a.txt"), Failure);
    }
}

TEST_F(DoctorTest, SeesRegistryAndFiles) {
    Write(L"mode3.zmi", ZmiBuilder{.mode = 3, .frames = {{4, 3}}}.Build());
    Write(L"frameless.zmi", ZmiBuilder{.frameTable = true}.Build());
    Write(L"thin.zmi", ZmiBuilder{.frames = {{300, 1}}}.Build());
    std::filesystem::create_directory(folder_ / L"empty");

    const ScratchRegistry registry;
    const std::wstring windows = LR"(Software\Microsoft\Windows\CurrentVersion\)",
                       classes = LR"(Software\Classes\)";
    Register(HKEY_CURRENT_USER);
    Set(HKEY_CURRENT_USER, classes + LR"(CLSID\{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}\InProcServer32)", L"",
        Beside(L"VANTREL64.DLL")); // another spelling, not another library
    Set(HKEY_CURRENT_USER, classes + L".zmi", L"QuickTip", L"1");
    Set(HKEY_LOCAL_MACHINE, classes + L".zmi", L"TileInfo", L"prop:Dimensions;Size");
    Set(HKEY_CURRENT_USER, classes + LR"(CLSID\{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}\InProcServer32)", L"",
        L"shell32.dll");
    Set(HKEY_CURRENT_USER, windows + LR"(Explorer\FileExts\.zmi\UserChoiceLatest\ProgId)", L"ProgId", L"Y");
    Set(HKEY_LOCAL_MACHINE, classes + LR"(Y\DefaultIcon)", L"", L"y.ico");
    Set(HKEY_LOCAL_MACHINE, windows + LR"(Policies\Explorer)", L"DisableThumbnails", L"1");
    Set(HKEY_CURRENT_USER, windows + LR"(Shell Extensions\Blocked)",
        L"{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}", L"");
    const DoctorFacts facts = GatherFacts(
        {}, {folder_ / L"empty", folder_ / L"mode3.zmi", folder_ / L"frameless.zmi", folder_ / L"thin.zmi"});
    const std::vector<std::wstring> told = Told(facts);
    const auto isTold = [&](const std::wstring& part) {
        return std::ranges::any_of(told, [&](const auto& whole) { return Matches(whole, part); });
    };
    for (const wchar_t* part :
         {L"[QuickTip] is of the wrong type", L"hides 1 of the machine-wide registry values",
          L"fail shell32.dll is registered without its folder for the thumbnail handler",
          L"the program Y has its own icon", L"fail a policy turns thumbnails off (HKLM",
          L"icon handler is blocked", L"empty: the folder contains no .zmi files",
          L"mode3.zmi: frame 1 is in pixel mode 3",
          L"frameless.zmi: the frame table at offset 167 contains no frames", L"300 x 1 pixels is too thin"})
        EXPECT_TRUE(isTold(part)) << testing::PrintToString(part);
    EXPECT_FALSE(isTold(L"two libraries"));
    const ToolRun run = Run(Beside(L"zmi-preview.exe"), {L"--doctor", L"none.zmi"});
    run.Ended(1).Told("[fail] none.zmi: not found\n       Fix: check the name and the folder\n");
    EXPECT_FALSE(Contains(run.out, "Nothing is wrong"));
    Run(Beside(L"zmi-preview.exe"), {L"--doctor", L"--json", L"none.zmi"})
        .Told(
            R"({"health": "fail", "text": "none.zmi: not found", "fix": "check the name and the folder"}], )"
            R"("ok": false})");
}

} // namespace
} // namespace vantrel::tests
