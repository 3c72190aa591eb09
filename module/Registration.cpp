#include "module/Registration.h"

#include "module/ClassTable.h"
#include "module/ModuleState.h"
#include "support/RegistrationEntry.h"
#include "support/RegistryKey.h"

#include <shlobj.h>

#include <cwchar>

namespace vantrel {

namespace {

constexpr wchar_t classKeyPrefix[] = L"Software\\Classes\\CLSID\\";
constexpr wchar_t fileTypeKey[] = L"Software\\Classes\\.zmi";

// One step of the registration: a class with its binding, or a single value.
struct RegistrationStep {
    const wchar_t* classId = nullptr; // null for a single value
    const wchar_t* description = nullptr;

    const wchar_t* key = nullptr; // where a class is bound; null when nothing more is written
    const wchar_t* valueName = nullptr;
    const wchar_t* data = nullptr;
    bool forMachine = false; // the key lies under HKEY_LOCAL_MACHINE, not HKEY_CURRENT_USER

    HKEY Root() const { return forMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER; }
};

constexpr RegistrationStep BoundClass(const wchar_t* classId, const wchar_t* description,
                                      const wchar_t* bindingKey, const wchar_t* bindingData) {
    return {.classId = classId, .description = description, .key = bindingKey, .data = bindingData};
}

constexpr RegistrationStep PropertyList(const wchar_t* name, const wchar_t* properties) {
    return {.key = fileTypeKey, .valueName = name, .data = properties};
}

// In the order in which the values are written: 28 in total, four for each bound class.
constexpr RegistrationStep registrationTable[] = {
    BoundClass(thumbnailProviderId, L"Vantrel Thumbnail Provider",
               L"Software\\Classes\\.zmi\\ShellEx\\{E357FCCD-A995-4576-B01F-234630154E96}",
               thumbnailProviderId),
    BoundClass(extractImageHandlerId, L"Vantrel Extract Image",
               L"Software\\Classes\\.zmi\\ShellEx\\{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}",
               extractImageHandlerId),
    BoundClass(iconHandlerId, L"Vantrel Extract Icon", L"Software\\Classes\\.zmi\\ShellEx\\IconHandler",
               iconHandlerId),
    // Deliberate: a column handler's key carries the description.
    BoundClass(columnProviderId, L"Vantrel Column Provider",
               L"Software\\Classes\\Folder\\ShellEx\\ColumnHandlers\\{A8D4E2F1-37C9-4b6a-8E05-91F2C6D7A3B4}",
               L"Vantrel Column Provider"),
    PropertyList(L"QuickTip", L"prop:Dimensions;Type;Size;Write"),
    PropertyList(L"TileInfo", L"prop:Dimensions;Size"),
    {.classId = propertyStoreId, .description = L"Vantrel Property Store"},
    PropertyList(L"ContentViewModeForBrowse",
                 L"prop:~System.ItemNameDisplay;System.Size;System.Title;System.Image.Dimensions;"
                 L"System.Image.BitDepth;System.DateModified"),
    PropertyList(L"InfoTip", L"prop:System.ItemTypeText;System.Title;System.Image.Dimensions;"
                             L"System.Image.BitDepth;System.Size;System.DateModified"),
    PropertyList(
        L"FullDetails",
        L"prop:System.PropGroup.Description;System.Title;System.Image.Dimensions;System.Image.BitDepth;"
        L"System.PropGroup.FileSystem;System.ItemNameDisplay;System.ItemTypeText;"
        L"System.ItemFolderPathDisplay;System.Size;System.DateCreated;System.DateModified;"
        L"System.FileAttributes;*System.OfflineAvailability;*System.OfflineStatus;*System.SharedWith;"
        L"*System.FileOwner;*System.ComputerName"),
    PropertyList(
        L"PreviewDetails",
        L"prop:System.Title;System.Image.Dimensions;System.Image.BitDepth;System.DateModified;System.Size;"
        L"System.DateCreated;*System.OfflineAvailability;*System.OfflineStatus;*System.SharedWith"),
    PropertyList(L"PreviewTitle", L"prop:System.ItemNameDisplay;System.ItemTypeText;System.Title;"
                                  L"System.Image.Dimensions;System.Image.BitDepth"),
    PropertyList(L"ExtendedTileInfo", L"prop:System.ItemTypeText;System.Title;System.Image.Dimensions;"
                                      L"System.Image.BitDepth;System.Size;System.DateModified;"
                                      L"System.OfflineAvailability"),
    {.key = L"Software\\Microsoft\\Windows\\CurrentVersion\\PropertySystem\\PropertyHandlers\\.zmi",
     .data = propertyStoreId,
     .forMachine = true},
};

// Deliberate: no separator before ".zmi", so that the binding above survives unregistration.
constexpr wchar_t removedMachineKey[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\PropertySystem\\PropertyHandlers.zmi";

// Constant texts concatenated without allocating, so that no step can fail for lack of memory.
struct KeyPath {
    KeyPath(const wchar_t* first, const wchar_t* second) {
        std::wcscpy(text, first);
        std::wcscat(text, second);
    }

    wchar_t text[MAX_PATH];
};

HRESULT WriteClass(const RegistrationStep& step, const wchar_t* modulePath) {
    const KeyPath classKey(classKeyPrefix, step.classId);
    const KeyPath serverKey(classKey.text, L"\\InProcServer32");
    const RegistrationEntry entries[] = {
        {HKEY_CURRENT_USER, classKey.text, nullptr, step.description},
        {HKEY_CURRENT_USER, serverKey.text, nullptr, modulePath},
        {HKEY_CURRENT_USER, serverKey.text, L"ThreadingModel", L"Apartment"},
    };
    for (const RegistrationEntry& entry : entries) {
        if (const HRESULT result = WriteStringValue(entry); FAILED(result))
            return result;
    }
    return S_OK;
}

void TellShell() {
    SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr);
}

} // namespace

HRESULT RegisterModule() {
    wchar_t modulePath[MAX_PATH];
    if (GetModuleFileNameW(g_moduleInstance, modulePath, MAX_PATH) == 0)
        return HRESULT_FROM_WIN32(GetLastError());
    // A longer path is truncated, in some versions of Windows without a terminator.
    modulePath[MAX_PATH - 1] = L'\0';

    for (const RegistrationStep& step : registrationTable) {
        HRESULT result = step.classId ? WriteClass(step, modulePath) : S_OK;
        if (SUCCEEDED(result) && step.key)
            result = WriteStringValue({step.Root(), step.key, step.valueName, step.data});
        if (FAILED(result))
            return result;
    }
    TellShell();
    return S_OK;
}

void UnregisterModule() {
    for (const RegistrationStep& step : registrationTable) {
        if (!step.classId)
            continue;
        RegistryKey::DeleteKeyTree(HKEY_CURRENT_USER, KeyPath(classKeyPrefix, step.classId).text);
        if (step.key)
            RegistryKey::DeleteKeyTree(HKEY_CURRENT_USER, step.key);
    }
    for (const RegistrationStep& step : registrationTable) {
        if (!step.valueName)
            continue;
        const KeyPath name(L"\\", step.valueName);
        RegistryKey::DeleteValueByPath(HKEY_CURRENT_USER, KeyPath(step.key, name.text).text);
    }
    RegistryKey::DeleteKeyTree(HKEY_LOCAL_MACHINE, removedMachineKey);
    TellShell();
}

} // namespace vantrel
