// The module's front door: what the loader, COM and registration tools call.

#include "module/ClassFactory.h"
#include "module/ClassTable.h"
#include "module/ModuleState.h"
#include "module/Registration.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) {
        vantrel::g_moduleInstance = instance;
        // Windows refuses this to a module with a TLS directory, which mingw-w64's runtime brings.
        DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
    if (!object)
        return E_POINTER;
    *object = nullptr;
    const vantrel::CreateInstanceFn create = vantrel::FindCreator(classId);
    return create ? vantrel::CreateObject<vantrel::ClassFactory>(iid, object, create)
                  : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
    return vantrel::g_moduleCount == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
    return vantrel::RegisterModule();
}

STDAPI DllUnregisterServer() {
    vantrel::UnregisterModule();
    return S_OK;
}
