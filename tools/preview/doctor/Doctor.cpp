#include "tools/preview/doctor/Doctor.h"

#include "tools/preview/HandlerRegistry.h"
#include "tools/preview/doctor/Registration.h"
#include "tools/preview/doctor/RegistryReader.h"
#include "tools/preview/doctor/ZmiFileCheck.h"
#include "tools/terminal/Console.h"
#include "tools/terminal/Failure.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <system_error>

namespace vantrel::tools {

namespace {

// A number in the registry that takes thumbnails away when it is not 0.
struct Setting {
    Health health;
    const wchar_t* key;
    const wchar_t* name;
    const wchar_t* effect;
    const wchar_t* cure;
};
constexpr const wchar_t* explorerPolicies = LR"(Software\Microsoft\Windows\CurrentVersion\Policies\Explorer)";
constexpr std::array<Setting, 4> settings = {{
    {Health::Fail, LR"(Software\Microsoft\Windows\CurrentVersion\Explorer\Advanced)", L"IconsOnly",
     L"Explorer shows icons instead of thumbnails",
     L"in Explorer's folder options, under View, clear \"Always show icons, never thumbnails\""},
    {Health::Fail, explorerPolicies, L"DisableThumbnails", L"a policy switches thumbnails off",
     L"ask your administrator, or delete this value"},
    {Health::Warn, explorerPolicies, L"DisableThumbnailsOnNetworkFolders",
     L"a policy switches thumbnails off in network folders", L"copy the files to a local folder"},
    {Health::Warn, explorerPolicies, L"EnforceShellExtensionSecurity",
     L"a policy lets only approved shell extensions load",
     L"ask your administrator to approve the five class identifiers"},
}};

const wchar_t* RootName(HKEY root) {
    return root == HKEY_CURRENT_USER ? LR"(HKCU\)" : LR"(HKLM\)";
}

// The library that lies beside this program, as the installer puts both; empty when there is none.
std::optional<std::filesystem::path> LibraryBesideThisProgram() {
    std::wstring program(32768, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    std::filesystem::path library = std::filesystem::path(program).replace_filename(L"Vantrel64.dll");
    if (GetFileAttributesW(library.c_str()) == INVALID_FILE_ATTRIBUTES)
        return std::nullopt;
    return library;
}

std::wstring Quoted(const std::wstring& text) {
    return L'"' + text + L'"';
}

} // namespace

Doctor::Doctor(std::optional<std::filesystem::path> dll) : dll_(std::move(dll)) {
    const std::set<std::wstring> servers = RegisteredServers();
    auto library = dll_ ? dll_ : LibraryBesideThisProgram();
    if (!library && !servers.empty())
        library = *servers.begin();
    registerAgain_ = L"run regsvr32 " + Quoted(library ? library->wstring() : LR"(...\Vantrel64.dll)");
}

std::set<std::wstring> Doctor::RegisteredServers() {
    std::set<std::wstring> servers;
    for (const HandlerKind kind : allHandlers)
        if (const auto path =
                ReadClassText(LR"(CLSID\)" + std::wstring(ClassOf(kind).classId) + LR"(\InProcServer32)"))
            servers.insert(*path);
    return servers;
}

std::vector<Finding> Doctor::Examine(const std::vector<InputFile>& files) {
    CheckRegistration();
    CheckServer();
    CheckOtherHandlers();
    CheckSettings();
    for (const InputFile& file : files)
        CheckFile(file);
    return std::move(findings_);
}

void Doctor::Add(Health health, std::wstring text, const std::wstring& cure) {
    if (!cure.empty())
        text += L". Cure: " + cure;
    findings_.push_back({health, std::move(text)});
}

void Doctor::CheckRegistration() {
    const std::vector<RegistrationValue> values = ExpectedRegistration();
    std::vector<std::wstring> wrong;
    std::ptrdiff_t wrongForUser = 0;
    bool isThereAny = false;
    for (const RegistrationValue& value : values) {
        const auto found = value.Read();
        const bool isForUser = value.root == HKEY_CURRENT_USER;
        isThereAny = isThereAny || (found && isForUser);
        if (found && (value.data.empty() || *found == value.data))
            continue;
        wrongForUser += isForUser;
        wrong.push_back(value.Name() +
                        (found ? L" is " + Quoted(*found) + L", not " + Quoted(value.data) : L" is missing"));
    }
    if (!isThereAny) {
        // The machine's one value outlives an unregistration, so it does not count here.
        Add(Health::Fail, L"the library is not registered for this user: none of its values is there",
            registerAgain_ + L" as the user who is to see the thumbnails");
        return;
    }
    for (const std::wstring& text : wrong) {
        const bool isMachine = text.starts_with(LR"(HKLM\)");
        Add(Health::Fail, text + (isMachine ? L": no title, dimensions and bit depth in Explorer" : L""),
            isMachine ? registerAgain_ + L", in a command prompt opened as administrator: this one "
                                         L"value takes the right to write under HKEY_LOCAL_MACHINE"
                      : registerAgain_);
    }
    if (wrong.empty())
        Add(Health::Ok,
            L"all " + std::to_wstring(values.size()) + L" registry values are present and as written");
    else if (wrongForUser == 0)
        Add(Health::Ok, L"the other " + std::to_wstring(values.size() - wrong.size()) +
                            L" registry values are present and as written");
}

void Doctor::CheckServer() {
    const std::set<std::wstring> servers = RegisteredServers();
    if (servers.size() > 1)
        Add(Health::Fail,
            L"the five classes name different libraries: " + *servers.begin() + L" and " + *servers.rbegin(),
            registerAgain_);

    const auto expected = dll_ ? dll_ : LibraryBesideThisProgram();
    std::error_code ignored;
    for (const std::wstring& server : servers) {
        const DWORD attributes = GetFileAttributesW(server.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) {
            Add(Health::Fail, L"the registered library " + server + L" does not exist",
                L"put it back, or run regsvr32 on it where it is now");
            continue;
        }
        if (expected && !std::filesystem::equivalent(*expected, server, ignored))
            Add(dll_ ? Health::Fail : Health::Warn,
                L"the registered library is " + server + L", not " + expected->wstring(), registerAgain_);
        CheckClasses(server);
    }
    if (servers.empty() && dll_)
        CheckClasses(dll_->wstring());
}

void Doctor::CheckClasses(const std::wstring& server) {
    try {
        const ServerModule module(server);
        std::wstring absent;
        for (const char* name :
             {"DllGetClassObject", "DllCanUnloadNow", "DllRegisterServer", "DllUnregisterServer"})
            if (!module.Exports(name))
                absent += L" " + std::wstring(name, name + std::strlen(name));
        if (!absent.empty()) {
            Add(Health::Fail, server + L" is another library, for it does not export" + absent,
                registerAgain_);
            return;
        }
        Add(Health::Ok, server + L" loads and exports its four entry points");

        for (const HandlerKind kind : allHandlers) {
            const HandlerClass& known = ClassOf(kind);
            const std::wstring name = std::wstring(L"the class ") + known.description;
            try {
                CLSID classId{};
                Check(CLSIDFromString(known.classId, &classId), known.classId);
                Microsoft::WRL::ComPtr<IUnknown> object;
                module.Create(classId, *known.interfaceId, reinterpret_cast<void**>(object.GetAddressOf()));
                Add(Health::Ok, name + L" can be created");
            } catch (const Failure& failure) {
                Add(Health::Fail, name + L" cannot be created: " + failure.Message(),
                    L"install the library anew; this one is damaged or another one");
            }
        }
    } catch (const Failure& failure) {
        Add(Health::Fail, failure.Message(), L"install the 64-bit library anew and run regsvr32 on it");
    }
}

void Doctor::CheckOtherHandlers() {
    std::set<std::wstring> programs;
    if (auto chosen = ReadText(
            HKEY_CURRENT_USER,
            LR"(Software\Microsoft\Windows\CurrentVersion\Explorer\FileExts\.zmi\UserChoice)", L"ProgId"))
        programs.insert(*chosen);
    if (auto usual = ReadClassText(L".zmi"))
        programs.insert(*usual);
    bool isClaimed = false;
    for (const std::wstring& program : programs)
        for (const HandlerKind kind :
             {HandlerKind::Thumbnail, HandlerKind::ExtractImage, HandlerKind::Icon}) {
            const std::wstring key = program + LR"(\ShellEx\)" + ClassOf(kind).shellEx;
            const auto other = program.empty() ? std::nullopt : ReadClassText(key);
            if (!other || lstrcmpiW(other->c_str(), ClassOf(kind).classId) == 0)
                continue;
            isClaimed = true;
            Add(Health::Fail,
                L"the program that opens .zmi files, " + program + L", brings a handler of its own (" +
                    *other + L"), and the Shell asks that one first",
                LR"(choose another program under "Open with", or delete HKEY_CLASSES_ROOT\)" + key);
        }
    if (!isClaimed)
        Add(Health::Ok, L"no other handler claims .zmi");
}

void Doctor::CheckSettings() {
    bool isFree = true;
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        for (const Setting& setting : settings) {
            if (ReadNumber(root, setting.key, setting.name) == 0)
                continue;
            isFree = false;
            Add(setting.health,
                std::wstring(setting.effect) + L" (" + RootName(root) + setting.key + LR"(\)" + setting.name +
                    L")",
                setting.cure);
        }
        const std::wstring blocked = LR"(Software\Microsoft\Windows\CurrentVersion\Shell Extensions\Blocked)";
        for (const HandlerKind kind : allHandlers) {
            if (!ReadText(root, blocked, ClassOf(kind).classId))
                continue;
            isFree = false;
            Add(Health::Fail, std::wstring(L"the class ") + ClassOf(kind).description + L" is blocked",
                std::wstring(L"delete the value ") + ClassOf(kind).classId + L" in " + RootName(root) +
                    blocked);
        }
    }
    if (isFree)
        Add(Health::Ok, L"no setting and no policy switches thumbnails off");
}

void Doctor::CheckFile(const InputFile& file) {
    if (const auto fault = FindFault(file.path)) {
        Add(Health::Fail, file.shown + L": " + *fault,
            L"this file has no picture to show; make it anew or fetch it again");
        return;
    }
    Add(Health::Ok, file.shown + L": header, trailer and frames are sound");
    if (lstrcmpiW(file.path.extension().c_str(), L".zmi") != 0)
        Add(Health::Warn, file.shown + L": the Shell goes by the extension, and this one is not .zmi",
            L"rename the file");
}

bool PrintFindings(const std::vector<Finding>& findings, JsonDocument* json) {
    const bool ok = std::none_of(findings.begin(), findings.end(),
                                 [](const Finding& finding) { return finding.health == Health::Fail; });
    struct Name {
        const wchar_t* plain;
        const wchar_t* tag;
    };
    constexpr std::array<Name, 3> names = {
        {{L"ok", L"[ok]   "}, {L"warn", L"[warn] "}, {L"fail", L"[fail] "}}};
    if (json)
        json->BeginList("checks");
    for (const Finding& finding : findings) {
        const Name& name = names[static_cast<std::size_t>(finding.health)];
        if (json) {
            JsonObject check;
            check.Add("health", name.plain);
            check.Add("text", finding.text);
            json->Append(check);
        } else {
            PrintLine(name.tag + finding.text);
        }
    }
    if (ok && !json) {
        PrintLine(
            L"Nothing is wrong here. Where Explorer still shows old pictures, clear its thumbnail cache "
            L"(Disk Clean-up, Thumbnails).");
    }
    return ok;
}

} // namespace vantrel::tools
