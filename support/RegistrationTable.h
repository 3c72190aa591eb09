// The values that make the module's handlers known to Windows: written and removed by the module, checked by
// the doctor.
#pragma once

#include "support/RegistrationEntry.h"

#include <cwchar>

namespace vantrel {

// The module's classes, exactly as the registry names them.
inline constexpr wchar_t thumbnailProviderId[] = L"{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}";
inline constexpr wchar_t extractImageHandlerId[] = L"{C46E1B3A-92F7-4d05-A1E8-7B3D5F92C0A6}";
inline constexpr wchar_t iconHandlerId[] = L"{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}";
inline constexpr wchar_t columnProviderId[] = L"{A8D4E2F1-37C9-4b6a-8E05-91F2C6D7A3B4}";
inline constexpr wchar_t propertyStoreId[] = L"{3F1C9A42-6B0D-4e57-9A21-5C8E7D40B613}";

// One step of the registration: a class with its binding, or a single value.
struct RegistrationStep {
    const wchar_t* classId = nullptr; // null for a single value
    const wchar_t* description = nullptr;

    const wchar_t* key = nullptr; // where a class is bound; null when nothing more is written
    const wchar_t* valueName = nullptr;
    const wchar_t* data = nullptr;
    bool forMachine = false; // the key lies under HKEY_LOCAL_MACHINE, not HKEY_CURRENT_USER
};

constexpr RegistrationStep BoundClass(const wchar_t* classId, const wchar_t* description,
                                      const wchar_t* bindingKey, const wchar_t* bindingData) {
    return {.classId = classId, .description = description, .key = bindingKey, .data = bindingData};
}

constexpr RegistrationStep PropertyList(const wchar_t* name, const wchar_t* properties) {
    return {.key = L"Software\\Classes\\.zmi", .valueName = name, .data = properties};
}

// In the order in which the values are written: 28 in total, four for each bound class.
inline constexpr RegistrationStep registrationTable[] = {
    BoundClass(thumbnailProviderId, L"Vantrel Thumbnail Provider",
               L"Software\\Classes\\.zmi\\ShellEx\\{E357FCCD-A995-4576-B01F-234630154E96}",
               thumbnailProviderId),
    BoundClass(extractImageHandlerId, L"Vantrel Extract Image",
               L"Software\\Classes\\.zmi\\ShellEx\\{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}",
               extractImageHandlerId),
    BoundClass(iconHandlerId, L"Vantrel Extract Icon", L"Software\\Classes\\.zmi\\ShellEx\\IconHandler",
               iconHandlerId),
    // Intentional: a column handler's key carries the description.
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

// Constant texts concatenated without allocating, so that no step can fail for lack of memory.
struct KeyPath {
    KeyPath(const wchar_t* first, const wchar_t* second) {
        std::wcscpy(text, first);
        std::wcscat(text, second);
    }

    wchar_t text[MAX_PATH];
};

struct ClassKey : KeyPath {
    explicit ClassKey(const wchar_t* classId) : KeyPath(L"Software\\Classes\\CLSID\\", classId) {}
};

// Passes each value, in order, to a function that returns an HRESULT, up to the first failure. The texts of
// an entry are valid during the call.
template <class Use>
HRESULT ForEachEntry(const wchar_t* modulePath, Use use) {
    for (const RegistrationStep& step : registrationTable) {
        if (step.classId) {
            const ClassKey classKey(step.classId);
            const KeyPath serverKey(classKey.text, L"\\InProcServer32");
            const RegistrationEntry entries[] = {
                {HKEY_CURRENT_USER, classKey.text, nullptr, step.description},
                {HKEY_CURRENT_USER, serverKey.text, nullptr, modulePath},
                {HKEY_CURRENT_USER, serverKey.text, L"ThreadingModel", L"Apartment"},
            };
            for (const RegistrationEntry& entry : entries)
                if (const HRESULT result = use(entry); FAILED(result))
                    return result;
        }
        if (step.key) {
            const HKEY root = step.forMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
            if (const HRESULT result = use({root, step.key, step.valueName, step.data}); FAILED(result))
                return result;
        }
    }
    return S_OK;
}

} // namespace vantrel
