#include "tools/preview/doctor/Diagnosis.h"

#include "tools/inspection/ZmiFile.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/FileName.h"
#include "tools/terminal/NumberText.h"

#include <shlwapi.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace vantrel::tools {

namespace {

constexpr unsigned smallestThumbnail = 48; // Explorer's medium icons
constexpr unsigned largestThumbnail = 256; // Explorer's extra large icons

struct SettingEffect {
    std::wstring_view name;
    Health health;
    const wchar_t* effect;
    const wchar_t* fix;
};

constexpr std::wstring_view approvedOnly = L"EnforceShellExtensionSecurity";
constexpr auto settingEffects = std::to_array<SettingEffect>({
    {L"IconsOnly", Health::Fail, L"Explorer shows icons instead of thumbnails",
     L"in Explorer's folder options, under View, clear \"Always show icons, never thumbnails\""},
    {L"DisableThumbnails", Health::Fail, L"a policy turns thumbnails off",
     L"ask your administrator, or delete this value"},
    {L"DisableThumbnailsOnNetworkFolders", Health::Warn, L"a policy turns thumbnails off in network folders",
     L"copy the files to a local folder"},
    {approvedOnly, Health::Fail, L"a policy lets only approved shell extensions load",
     L"ask your administrator to approve the five handlers"},
});

const std::wstring packageName = L"Vantrel64-" VANTREL_VERSION L"-x64";
const std::wstring chooseProgram = L"choose another program under \"Open with\"";
const std::wstring useInstaller = L"install Vantrel64 with its installer, which registers it for the machine";
const std::wstring replaceLibrary = L"replace it with the one in " + packageName + L".zip";
const std::wstring asAdministrator = L" as administrator, since this is a machine-wide registry value";
// Rewrites all files and all machine-wide registry values, whatever the files' versions.
const std::wstring repairInstallation =
    L"as administrator, in the installer's folder, run msiexec /i " + packageName +
    L".msi REINSTALL=ALL REINSTALLMODE=amus; install it if Apps doesn't list Vantrel64 " VANTREL_VERSION;
const std::vector<HandlerKind> everyKind(allHandlers.begin(), allHandlers.end());

std::wstring Quoted(const std::wstring& text) {
    return L'"' + text + L'"';
}

std::wstring NameOf(HandlerKind kind) {
    return ClassOf(kind).name + std::wstring(L" handler");
}

// What is wrong with a library, as the end of a sentence; empty if it can create these classes.
std::wstring LibraryFault(const ServerFacts& server, const std::vector<HandlerKind>& kinds) {
    if (server.loaded == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND))
        return L" is not found";
    if (server.loaded == HRESULT_FROM_WIN32(ERROR_BAD_EXE_FORMAT))
        return L" is not a 64-bit library";
    if (FAILED(server.loaded))
        return L" can't be loaded: " + DescribeHresult(server.loaded);
    for (const HandlerKind kind : kinds) {
        const HRESULT created = server.created[IndexOf(kind)];
        if (created == CLASS_E_CLASSNOTAVAILABLE || created == HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND))
            return L" is another library, not Vantrel64";
        if (FAILED(created))
            return L" can't create the " + NameOf(kind) + L": " + DescribeHresult(created);
    }
    return {};
}

// One fault as is; several as their number and the first.
std::wstring Counted(const std::vector<std::wstring>& faults, const wchar_t* summary) {
    if (faults.size() == 1)
        return faults.front();
    return std::to_wstring(faults.size()) + L' ' + summary + L", the first: " + faults.front();
}

class Diagnosis {
public:
    explicit Diagnosis(const DoctorFacts& facts) : facts_(facts) {
        for (const ValueFacts& value : facts.values) {
            if (value.isForMachine)
                continue;
            userValues_ += !value.user.IsMissing();
            machineValues_ += !value.machine.IsMissing();
            isUserOnly_ = isUserOnly_ || (value.wanted.empty() && value.machine.IsMissing());
        }
        isUserOnly_ = isUserOnly_ && userValues_;
        for (const HandlerKind kind : allHandlers)
            if (const auto& created = facts.classes[IndexOf(kind)].created; created && FAILED(*created))
                comFaults_.push_back(L"Windows can't load the " + NameOf(kind) + L": " +
                                     DescribeHresult(*created));
        std::wstring library = facts.ownLibrary.value_or(LR"(...\Vantrel64.dll)");
        for (const ServerFacts& server : facts.servers)
            if (server.path == facts.givenLibrary && LibraryFault(server, everyKind).empty())
                library = server.path;
        library = Quoted(library);
        registerAgain_ = machineValues_ ? repairInstallation : L"run regsvr32 " + library;
        unhide_ = L"run regsvr32 /u " + library + L" as this user; the machine-wide registration stays";
    }

    std::vector<Finding> Findings() {
        CheckMachine();
        CheckRegistration();
        CheckLibraries();
        CheckCom();
        CheckHandlers();
        CheckSettings();
        for (const FileFacts& file : facts_.files)
            CheckFile(file);
        return std::move(findings_);
    }

private:
    void Add(Health health, std::wstring text, std::wstring fix) {
        findings_.push_back({health, std::move(text), std::move(fix)});
    }
    void Ok(std::wstring text) { Add(Health::Ok, std::move(text), {}); }
    void Warn(std::wstring text, std::wstring fix) { Add(Health::Warn, std::move(text), std::move(fix)); }
    void Fail(std::wstring text, std::wstring fix) { Add(Health::Fail, std::move(text), std::move(fix)); }

    void CheckMachine() {
        if (facts_.isArm64)
            Fail(L"this is an ARM64 machine, whose Explorer can't load an x64 library",
                 L"build Vantrel64 on this machine");
        // Without User Account Control, COM shows this program what it shows Explorer.
        if (facts_.isExplorerElevated && isUserOnly_ && (!facts_.isUacOff || !comFaults_.empty()))
            Fail(std::wstring(facts_.isUacOff ? L"User Account Control is off, so Explorer" : L"Explorer") +
                     L" runs as administrator, where COM ignores what is registered for one user only",
                 useInstaller);
    }

    void CheckRegistration() {
        if (userValues_ == 0 && machineValues_ == 0) {
            // The property handler's value survives unregistration, so it does not count here.
            Fail(L"the library is registered neither for this user (HKCU) nor for the machine (HKLM)",
                 L"install Vantrel64, or " + registerAgain_ + L" as the user who wants to see thumbnails");
            return;
        }
        const std::size_t before = findings_.size();
        std::vector<std::wstring> wrong;
        std::size_t hidingCount = 0;
        std::wstring difference;
        for (const ValueFacts& value : facts_.values) {
            std::wstring fault = FaultOf(value);
            if (value.IsHiding()) {
                ++hidingCount;
                if (fault.empty() && value.wanted.empty() &&
                    CompareNames(value.user.text, value.machine.text) != 0)
                    fault = L"HKCU names " + value.user.text + L", HKLM " + value.machine.text;
                if (difference.empty())
                    difference = fault;
            } else if (!fault.empty() && value.isForMachine) {
                Fail(fault + L": Explorer shows no title, dimensions and bit depth",
                     registerAgain_ + (machineValues_ ? L"" : asAdministrator));
            } else if (!fault.empty()) {
                wrong.push_back(fault);
            }
        }
        if (!wrong.empty())
            Fail(Counted(wrong, L"registry values are missing or wrong"), registerAgain_);
        // A registration for this user, such as one left by version 1.0.0, hides the machine's.
        if (hidingCount > 0)
            Add(difference.empty() ? Health::Warn : Health::Fail,
                L"this user's registration (HKCU) hides " + std::to_wstring(hidingCount) +
                    L" of the machine-wide registry values (HKLM)" +
                    (difference.empty() ? L"" : L"; " + difference),
                unhide_);
        const bool isSound = std::ranges::all_of(facts_.servers, [this](const ServerFacts& server) {
            const std::vector<HandlerKind> kinds = ClassesOf(server);
            return kinds.empty() || (server.HasFolder() && LibraryFault(server, kinds).empty());
        });
        if (findings_.size() == before && isSound)
            Ok(L"all registry values are in place: " + std::to_wstring(userValues_) +
               L" for this user (HKCU), " + std::to_wstring(machineValues_ + 1) + L" for the machine (HKLM)");
    }

    // What is wrong with a value and where it is or should be; empty if nothing is wrong.
    std::wstring FaultOf(const ValueFacts& value) const {
        const RegistryText& found = value.Effective();
        const bool isMachines = value.isForMachine || (value.user.IsMissing() && machineValues_);
        const std::wstring name = (isMachines ? LR"(HKLM\)" : LR"(HKCU\)") + value.key + L" [" +
                                  (value.name.empty() ? L"default value" : value.name) + L"]";
        if (found.IsMissing())
            return name + L" is missing";
        if (found.status == ERROR_UNSUPPORTED_TYPE)
            return name + L" is of the wrong type, not a string";
        if (found.status != ERROR_SUCCESS)
            return name + L" can't be read: " + DescribeHresult(HRESULT_FROM_WIN32(found.status));
        if (!value.wanted.empty() && found.text != value.wanted)
            return name + L" is " + Quoted(found.text) + L", not " + Quoted(value.wanted);
        return {};
    }

    void CheckLibraries() {
        std::vector<std::wstring> registered;
        auto expected = facts_.givenLibrary ? facts_.givenLibrary : facts_.ownLibrary;
        for (const ServerFacts& server : facts_.servers) {
            const std::vector<HandlerKind> kinds = ClassesOf(server);
            const bool isRegistered = !kinds.empty();
            const bool isHiding =
                std::ranges::any_of(kinds, [this](HandlerKind kind) { return ServerOf(kind).IsHiding(); });
            const std::wstring& fix = isHiding ? unhide_ : registerAgain_;
            const std::vector<HandlerKind>& asked = isRegistered ? kinds : everyKind;
            const std::wstring fault = LibraryFault(server, asked);
            const std::wstring handlers = asked == everyKind  ? L"all five handlers"
                                          : asked.size() == 1 ? L"the " + NameOf(asked[0])
                                                              : std::to_wstring(asked.size()) + L" handlers";
            if (isRegistered && !server.HasFolder()) {
                Fail(server.path + L" is registered without its folder for " + handlers +
                         L", so what Windows finds depends on the program",
                     fix);
            } else if (fault.empty()) {
                Ok(server.path + L" creates " + handlers);
                if (isRegistered)
                    registered.push_back(server.path);
            } else if (isRegistered) {
                const bool isOwn = facts_.ownLibrary && CompareNames(server.path, *facts_.ownLibrary) == 0;
                std::wstring what = server.path + L", registered for ";
                what.append(handlers).append(L",").append(fault);
                Fail(what, isOwn && !machineValues_ ? replaceLibrary : fix);
            } else {
                Fail(server.path + fault, L"check the path after --dll");
                expected.reset();
            }
        }
        if (registered.size() > 1)
            Fail(L"the five handlers come from two libraries, " + registered[0] + L" and " + registered[1],
                 userValues_ && machineValues_ ? unhide_ : registerAgain_);
        else if (registered.size() == 1 && expected && CompareNames(*expected, registered[0]) != 0)
            Add(facts_.givenLibrary ? Health::Fail : Health::Warn,
                L"the registered library is " + registered[0] + L", not " + *expected,
                machineValues_ ? L"install the one you want" : L"run regsvr32 " + Quoted(*expected));
    }

    // The classes that this server is registered for.
    std::vector<HandlerKind> ClassesOf(const ServerFacts& server) const {
        std::vector<HandlerKind> kinds;
        for (const HandlerKind kind : allHandlers)
            if (CompareNames(ServerOf(kind).Effective().text, server.path) == 0)
                kinds.push_back(kind);
        return kinds;
    }

    // The value that names a class's server.
    const ValueFacts& ServerOf(HandlerKind kind) const {
        return *std::ranges::find_if(facts_.values, [kind](const ValueFacts& value) {
            return value.wanted.empty() && value.key.find(ClassOf(kind).classId) != std::wstring::npos;
        });
    }

    void CheckCom() {
        if (comFaults_.empty()) {
            if (std::ranges::all_of(facts_.classes,
                                    [](const ClassFacts& one) { return one.created.has_value(); }))
                Ok(L"Windows can load all five handlers");
        } else if (facts_.isDoctorElevated && !facts_.isExplorerElevated && isUserOnly_) {
            Warn(L"this program runs as administrator, where COM ignores what is registered for one user "
                 L"only, so what Explorer gets was not checked",
                 L"run the doctor in an ordinary command prompt");
        } else if (std::ranges::find(findings_, Health::Fail, &Finding::health) == findings_.end()) {
            Fail(Counted(comFaults_, L"handlers can't be loaded"), registerAgain_);
        }
    }

    void CheckHandlers() {
        const std::size_t before = findings_.size();
        for (const HandlerKind kind : allHandlers) {
            const std::wstring ours = ClassOf(kind).classId;
            const auto& answer = facts_.classes[IndexOf(kind)].answer;
            const auto binding = std::ranges::find(facts_.values, ours, &ValueFacts::wanted);
            // The column handler has no such binding. A wrong one has already been reported.
            if (binding == facts_.values.end() || !FaultOf(*binding).empty() ||
                (answer && CompareNames(*answer, ours) == 0))
                continue;
            std::wstring other = answer && !answer->empty() ? L", " + *answer : L"";
            std::wstring fix = registerAgain_;
            for (const ProgramFacts& program : facts_.programs) {
                const std::wstring& claim = program.handlers[IndexOf(kind)];
                if (claim.empty() || CompareNames(claim, ours) == 0 ||
                    (answer && CompareNames(claim, *answer) != 0))
                    continue;
                other = L", " + claim + L" of the program " + program.progId;
                fix = chooseProgram;
            }
            if (answer || !other.empty())
                Fail((other.empty() ? L"the system finds no " : L"the system uses another ") +
                         (NameOf(kind) + L" for .zmi" + other),
                     fix);
        }
        for (const ProgramFacts& program : facts_.programs)
            if (!program.defaultIcon.empty() && program.defaultIcon != L"%1")
                Warn(L"the program " + program.progId + L" has its own icon, which Explorer may show instead",
                     L"if it does, " + chooseProgram);
        const auto infoTip = std::ranges::find(facts_.values, L"InfoTip", &ValueFacts::name);
        if (facts_.infoTip && *facts_.infoTip != infoTip->wanted && FaultOf(*infoTip).empty())
            Warn(L"Explorer shows other properties for .zmi files than Vantrel64's, " +
                     Quoted(*facts_.infoTip),
                 !machineValues_           ? useInstaller
                 : facts_.programs.empty() ? repairInstallation
                                           : chooseProgram);
        if (findings_.size() == before)
            Ok(L"no other program's handler, icon or list of properties interferes");
    }

    void CheckSettings() {
        const std::size_t before = findings_.size();
        const bool areApproved = std::ranges::all_of(facts_.classes, &ClassFacts::isApproved);
        for (const std::wstring& setting : facts_.settings)
            for (const auto& [name, health, effect, fix] : settingEffects)
                if (setting.ends_with(L'\\' + std::wstring(name)) && !(name == approvedOnly && areApproved))
                    Add(health, effect + (L" (" + setting + L")"), fix);
        for (const HandlerKind kind : allHandlers)
            if (const auto& key = facts_.classes[IndexOf(kind)].blockingKey)
                Fail(L"the " + NameOf(kind) + L" is blocked",
                     std::wstring(L"delete the value ") + ClassOf(kind).classId + L" in " + *key);
        if (findings_.size() == before)
            Ok(L"no setting or policy turns thumbnails off");
    }

    void CheckFile(const FileFacts& file) {
        const std::wstring name = file.shown + L": ";
        if (file.unread) {
            Add(file.isFolder ? Health::Warn : Health::Fail, name + *file.unread,
                file.isFolder ? L"name a folder with .zmi files" : L"check the name and the folder");
            return;
        }
        if (CompareNames(PathFindExtensionW(file.shown.c_str()), L".zmi") != 0)
            Warn(name + L"the Shell goes by the extension, and this one is not .zmi", L"rename the file");
        const unsigned smallest = SmallestThumbnail(file.width, file.height);
        if (file.IsElsewhere())
            Warn(name + L"its content is not on this machine, so Explorer may show no thumbnail (not opened)",
                 L"in Explorer, choose \"Always keep on this device\" for it");
        else if (file.fault)
            Fail(name + *file.fault, L"recreate the file or get a new copy");
        else if (smallest > smallestThumbnail)
            Add(smallest > largestThumbnail ? Health::Fail : Health::Warn,
                name + SizeText(file.width, file.height) +
                    L" pixels is too thin for thumbnails smaller than " + std::to_wstring(smallest) +
                    L" pixels",
                L"crop the picture, or put it on a squarer canvas");
        else
            Ok(name + L"header, trailer and frames are valid");
    }

    const DoctorFacts& facts_;
    std::size_t userValues_ = 0; // of the 27 that may be in either hive
    std::size_t machineValues_ = 0;
    bool isUserOnly_ = false;             // a class's server is registered for this user only
    std::vector<std::wstring> comFaults_; // one for each class that it can't create
    std::wstring registerAgain_;          // fixes
    std::wstring unhide_;
    std::vector<Finding> findings_;
};

} // namespace

std::vector<Finding> Diagnose(const DoctorFacts& facts) {
    return Diagnosis(facts).Findings();
}

} // namespace vantrel::tools
