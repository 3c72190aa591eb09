#include "tools/preview/ServerModule.h"

#include "tools/terminal/Failure.h"

#include <unknwn.h>
#include <wrl/client.h>

namespace vantrel::tools {

ServerModule::ServerModule(const std::filesystem::path& path)
    : module_(LoadLibraryExW(path.c_str(), nullptr, path.is_absolute() ? LOAD_WITH_ALTERED_SEARCH_PATH : 0)) {
    if (!module_)
        FailWithLastError(L"cannot load " + path.wstring());
}

void ServerModule::Create(REFCLSID classId, REFIID interfaceId, void** object) const {
    const auto getClassObject =
        FindFunction<decltype(&DllGetClassObject)>(module_.get(), "DllGetClassObject");
    if (!getClassObject)
        throw Failure(L"the DLL exports no DllGetClassObject", HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND));
    Microsoft::WRL::ComPtr<IClassFactory> factory;
    const HRESULT found = getClassObject(classId, IID_PPV_ARGS(factory.GetAddressOf()));
    if (found == CLASS_E_CLASSNOTAVAILABLE)
        throw Failure(L"the library has no such class (0x80040111)", found);
    Check(found, L"DllGetClassObject");
    Check(factory->CreateInstance(nullptr, interfaceId, object), L"CreateInstance");
}

} // namespace vantrel::tools
