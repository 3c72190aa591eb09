#include "tools/preview/doctor/DoctorFacts.h"

#include "support/Handles.h"
#include "support/RegistrationTable.h"
#include "tools/inspection/ZmiFile.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/FileName.h"
#include "tools/terminal/InputFile.h"

#include <propsys.h>
#include <shlwapi.h>

#include <algorithm>
#include <set>

namespace vantrel::tools {

using Microsoft::WRL::ComPtr;

namespace {

const std::pair<HKEY, const wchar_t*> hives[] = {{HKEY_CURRENT_USER, LR"(HKCU\)"},
                                                 {HKEY_LOCAL_MACHINE, LR"(HKLM\)"}};

const std::wstring windowsKey = LR"(Software\Microsoft\Windows\CurrentVersion\)";

// Under Wine some of the functions below end the process, or don't answer as Windows does.
bool IsWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

bool IsArm64() {
    const auto ask =
        FindFunction<decltype(&IsWow64Process2)>(GetModuleHandleW(L"kernel32.dll"), "IsWow64Process2");
    USHORT process = 0;
    USHORT machine = 0;
    return ask && ask(GetCurrentProcess(), &process, &machine) && machine == IMAGE_FILE_MACHINE_ARM64;
}

// Above medium integrity, where COM ignores per-user registration.
bool IsElevated(HANDLE process) {
    HANDLE opened = nullptr;
    if (!OpenProcessToken(process, TOKEN_QUERY, &opened))
        return GetLastError() == ERROR_ACCESS_DENIED; // the same user's, yet out of reach
    const UniqueKernelHandle token(opened);
    alignas(TOKEN_MANDATORY_LABEL) std::array<std::byte, 256> buffer{};
    DWORD size = 0;
    if (!GetTokenInformation(token.get(), TokenIntegrityLevel, buffer.data(), buffer.size(), &size))
        return false;
    PSID level = reinterpret_cast<const TOKEN_MANDATORY_LABEL*>(buffer.data())->Label.Sid;
    return *GetSidSubAuthority(level, *GetSidSubAuthorityCount(level) - 1U) > SECURITY_MANDATORY_MEDIUM_RID;
}

void AskForRights(DoctorFacts& facts) {
    facts.isDoctorElevated = IsElevated(GetCurrentProcess());
    facts.isUacOff = ReadNumber(HKEY_LOCAL_MACHINE, windowsKey + LR"(Policies\System)", L"EnableLUA", 1) == 0;
    // Without UAC all processes of a user have the same rights.
    facts.isExplorerElevated = facts.isUacOff && facts.isDoctorElevated;
    DWORD processId = 0;
    GetWindowThreadProcessId(GetShellWindow(), &processId);
    const UniqueKernelHandle explorer(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    if (explorer)
        facts.isExplorerElevated = IsElevated(explorer.get());
}

std::optional<std::wstring> LibraryBesideThisProgram() {
    std::wstring program(32768, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    std::filesystem::path library = std::filesystem::path(program).replace_filename(L"Vantrel64.dll");
    if (GetFileAttributesW(library.c_str()) == INVALID_FILE_ATTRIBUTES)
        return std::nullopt;
    return library.wstring();
}

template <class Request>
HRESULT ResultOf(Request&& request) {
    try {
        request();
        return S_OK;
    } catch (const Failure& failure) {
        return failure.Result();
    }
}

ServerFacts LoadServer(const std::wstring& path) {
    ServerFacts facts{path};
    facts.loaded = ResultOf([&] {
        if (facts.HasFolder() && GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES)
            throw Failure(L"", HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
        const ServerModule module(path);
        for (const HandlerKind kind : allHandlers)
            facts.created[IndexOf(kind)] = ResultOf([&] {
                const HandlerClass& known = ClassOf(kind);
                ComPtr<IUnknown> object;
                module.Create(ParseClassId(known.classId), *known.interfaceId, &object);
            });
    });
    return facts;
}

std::optional<std::wstring> AskPropertySystem() {
    const UniqueModule propsys(LoadLibraryExW(L"propsys.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    const auto ask = propsys ? FindFunction<decltype(&PSLookupPropertyHandlerCLSID)>(
                                   propsys.get(), "PSLookupPropertyHandlerCLSID")
                             : nullptr;
    if (!ask)
        return std::nullopt;
    CLSID classId{};
    std::array<wchar_t, 39> text{};
    if (SUCCEEDED(ask(LR"(C:\picture.zmi)", &classId)))
        StringFromGUID2(classId, text.data(), static_cast<int>(text.size()));
    return text.data();
}

std::optional<std::wstring> AskShell(ASSOCSTR what, const wchar_t* extra = nullptr) {
    std::array<wchar_t, 1024> text{};
    auto size = static_cast<DWORD>(text.size());
    if (AssocQueryStringW(ASSOCF_NONE, what, L".zmi", extra, text.data(), &size) != S_OK)
        return std::nullopt;
    return text.data();
}

ClassFacts AskForClass(HandlerKind kind) {
    const HandlerClass& known = ClassOf(kind);
    ClassFacts facts;
    ComPtr<IUnknown> object;
    facts.created = CoCreateInstance(ParseClassId(known.classId), nullptr, CLSCTX_INPROC_SERVER,
                                     *known.interfaceId, &object);
    if (IsWine()) {
        if (KeyExists(HKEY_CURRENT_USER, classesKey + (LR"(CLSID\)" + std::wstring(known.classId))))
            facts.created.reset(); // its COM reads only HKEY_LOCAL_MACHINE
    } else if (kind == HandlerKind::Properties) {
        facts.answer = AskPropertySystem();
    } else if (known.shellEx) {
        facts.answer = AskShell(ASSOCSTR_SHELLEXTENSION, known.shellEx);
        // Documented for interface identifiers only, so no answer for "IconHandler" means nothing.
        if (!facts.answer && known.shellEx[0] == L'{')
            facts.answer = L"";
    }
    const std::wstring extensions = windowsKey + LR"(Shell Extensions\)";
    for (const auto& [root, name] : hives) {
        // Only the names of the values count, not their types.
        if (!ReadValue(root, extensions + L"Approved", known.classId).IsMissing())
            facts.isApproved = true;
        if (!ReadValue(root, extensions + L"Blocked", known.classId).IsMissing())
            facts.blockingKey = name + extensions + L"Blocked";
    }
    return facts;
}

std::vector<ProgramFacts> FindPrograms() {
    const std::wstring choices = windowsKey + LR"(Explorer\FileExts\.zmi\)";
    std::set<std::wstring> names;
    for (const wchar_t* choice : {L"UserChoice", LR"(UserChoiceLatest\ProgId)"})
        names.insert(ReadText(HKEY_CURRENT_USER, choices + choice, L"ProgId").value_or(L""));
    names.insert(ReadClassText(L".zmi").value_or(L""));
    names.erase(L"");
    std::vector<ProgramFacts> programs;
    for (const std::wstring& name : names) {
        ProgramFacts& program = programs.emplace_back(ProgramFacts{name});
        for (const HandlerKind kind : allHandlers)
            if (const wchar_t* shellEx = ClassOf(kind).shellEx)
                program.handlers[IndexOf(kind)] =
                    ReadClassText(name + LR"(\ShellEx\)" + shellEx).value_or(L"");
        program.defaultIcon = ReadClassText(name + LR"(\DefaultIcon)").value_or(L"");
    }
    return programs;
}

std::vector<std::wstring> FindSettings() {
    const std::wstring policies = windowsKey + LR"(Policies\Explorer)";
    const std::pair<std::wstring, const wchar_t*> known[] = {
        {windowsKey + LR"(Explorer\Advanced)", L"IconsOnly"},
        {policies, L"DisableThumbnails"},
        {policies, L"DisableThumbnailsOnNetworkFolders"},
        {policies, L"EnforceShellExtensionSecurity"},
    };
    std::vector<std::wstring> settings;
    for (const auto& [root, rootName] : hives)
        for (const auto& [key, name] : known)
            if (ReadNumber(root, key, name) != 0)
                settings.push_back(rootName + key + L'\\' + name);
    return settings;
}

FileFacts ExamineFile(const InputFile& file) {
    if (!file.fault.empty())
        return {.shown = file.shown, .isFolder = true, .unread = file.fault};
    FileFacts facts{.shown = file.shown, .attributes = GetFileAttributesW(file.path.c_str())};
    if (facts.attributes == INVALID_FILE_ATTRIBUTES) {
        const DWORD error = GetLastError();
        facts.unread = IsAbsence(error) ? L"not found" : DescribeHresult(HRESULT_FROM_WIN32(error));
    } else if (!facts.IsElsewhere()) {
        facts.fault = FindFault(file.path, facts.width, facts.height);
    }
    return facts;
}

} // namespace

std::vector<ValueFacts> ExpectedValues() {
    std::vector<ValueFacts> values;
    ForEachEntry(L"", [&](const RegistrationEntry& entry) {
        values.push_back({entry.subKey, entry.valueName ? entry.valueName : L"", entry.data,
                          entry.root == HKEY_LOCAL_MACHINE});
        return S_OK;
    });
    return values;
}

DoctorFacts GatherFacts(const std::optional<std::filesystem::path>& givenLibrary,
                        const std::vector<std::wstring>& arguments) {
    DoctorFacts facts;
    facts.isArm64 = IsArm64();
    if (!IsWine())
        AskForRights(facts);
    facts.ownLibrary = LibraryBesideThisProgram();

    std::set<std::wstring, NameOrder> paths;
    if (givenLibrary)
        paths.insert(facts.givenLibrary.emplace(givenLibrary->wstring()));
    facts.values = ExpectedValues();
    for (ValueFacts& value : facts.values) {
        if (!value.isForMachine)
            value.user = ReadValue(HKEY_CURRENT_USER, value.key, value.name);
        value.machine = ReadValue(HKEY_LOCAL_MACHINE, value.key, value.name);
        if (value.wanted.empty() && value.Effective().status == ERROR_SUCCESS)
            paths.insert(value.Effective().text);
    }
    for (const std::wstring& path : paths)
        facts.servers.push_back(LoadServer(path));
    std::ranges::transform(allHandlers, facts.classes.begin(), AskForClass);
    facts.programs = FindPrograms();
    facts.infoTip = AskShell(ASSOCSTR_INFOTIP);
    facts.settings = FindSettings();
    for (const InputFile& file : FindInputFiles(arguments))
        facts.files.push_back(ExamineFile(file));
    return facts;
}

} // namespace vantrel::tools
