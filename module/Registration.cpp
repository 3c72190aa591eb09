#include "module/Registration.h"

#include "module/ModuleState.h"
#include "support/RegistrationTable.h"
#include "support/RegistryKey.h"

#include <shlobj.h>

namespace vantrel {

namespace {

// Intentional: no separator before ".zmi", so that the property handler's binding survives unregistration.
constexpr wchar_t removedMachineKey[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\PropertySystem\\PropertyHandlers.zmi";

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

    const HRESULT result = ForEachEntry(modulePath, WriteStringValue);
    if (SUCCEEDED(result))
        TellShell();
    return result;
}

void UnregisterModule() {
    for (const RegistrationStep& step : registrationTable) {
        if (!step.classId)
            continue;
        RegistryKey::DeleteKeyTree(HKEY_CURRENT_USER, ClassKey(step.classId).text);
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
