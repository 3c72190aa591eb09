// What the doctor asks the system, as plain values; Diagnosis.h evaluates them.
#pragma once

#include "tools/preview/HandlerRegistry.h"
#include "tools/preview/RegistryReader.h"

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::tools {

// One value of the registration as found in the two hives.
struct ValueFacts {
    std::wstring key;
    std::wstring name;         // empty: the key's default value
    std::wstring wanted;       // empty: the path of the library
    bool isForMachine = false; // counts only under HKEY_LOCAL_MACHINE
    RegistryText user{};
    RegistryText machine{};

    // As HKEY_CLASSES_ROOT shows it: the user's value hides the machine's.
    const RegistryText& Effective() const { return user.IsMissing() ? machine : user; }
    bool IsHiding() const { return !user.IsMissing() && !machine.IsMissing(); }
};

// The 28 values of a registration, each still missing: 27 of classes, for the machine or for one user, and
// the property handler's.
std::vector<ValueFacts> ExpectedValues();

// A library, loaded by its path.
struct ServerFacts {
    std::wstring path;
    HRESULT loaded = S_OK; // "file not found" means the library itself, not a dependency
    std::array<HRESULT, allHandlers.size()> created{}; // each class, created by the library's own factory

    bool HasFolder() const { return std::filesystem::path(path).is_absolute(); }
};

struct ClassFacts {
    std::optional<HRESULT> created{}; // by COM, through the registry; absent if COM sees only part of that
    // The class that the system uses for .zmi: empty if there is none, absent if the system can't be asked.
    std::optional<std::wstring> answer{};
    bool isApproved = false;
    std::optional<std::wstring> blockingKey{};
};

// A program that .zmi files are opened with, and its own registration.
struct ProgramFacts {
    std::wstring progId;
    std::array<std::wstring, allHandlers.size()> handlers{}; // class identifiers
    std::wstring defaultIcon{};
};

struct FileFacts {
    std::wstring shown; // as the user wrote it
    bool isFolder = false;
    DWORD attributes = 0;
    std::optional<std::wstring> unread{}; // why nothing more is known, such as "not found"
    std::optional<std::wstring> fault{};  // what is wrong with it as a ZMI file
    unsigned width = 0;                   // of frame 0 in pixels
    unsigned height = 0;

    // A placeholder whose content is in the cloud or on other storage; it isn't opened.
    bool IsElsewhere() const {
        constexpr DWORD recallOnOpen = 0x40000; // not in every SDK
        constexpr DWORD recallOnDataAccess = 0x400000;
        return !unread && (attributes & (FILE_ATTRIBUTE_OFFLINE | recallOnOpen | recallOnDataAccess)) != 0;
    }
};

struct DoctorFacts {
    bool isArm64 = false; // the machine, not this program
    bool isUacOff = false;
    bool isExplorerElevated = false;
    bool isDoctorElevated = false;
    std::vector<ValueFacts> values;
    std::vector<ServerFacts> servers;         // each registered path once, and the given library's
    std::optional<std::wstring> givenLibrary; // by --dll
    std::optional<std::wstring> ownLibrary;   // in this program's folder, where the installer puts both
    std::array<ClassFacts, allHandlers.size()> classes;
    std::vector<ProgramFacts> programs;
    // The list of properties that the system shows for .zmi as an info tip; absent if it can't be asked.
    std::optional<std::wstring> infoTip;
    std::vector<std::wstring> settings; // names of values that are not 0, as "HKCU\\key\\name"
    std::vector<FileFacts> files;
};

// Queries the system. COM must be initialized; the arguments are files and folders. Changes nothing, but
// loads registered libraries.
DoctorFacts GatherFacts(const std::optional<std::filesystem::path>& givenLibrary,
                        const std::vector<std::wstring>& arguments);

} // namespace vantrel::tools
