#include "support/PersistedPath.h"

#include "support/Boundary.h"

namespace vantrel {

HRESULT PersistedPath::Load(LPCOLESTR fileName, DWORD) {
    if (!fileName)
        return E_POINTER;
    return GuardBoundary(E_FAIL, [&] {
        path_ = fileName;
        return S_OK;
    });
}

HRESULT PersistedPath::GetClassID(CLSID*) {
    return E_NOTIMPL;
}

HRESULT PersistedPath::IsDirty() {
    return E_NOTIMPL;
}

HRESULT PersistedPath::Save(LPCOLESTR, BOOL) {
    return E_NOTIMPL;
}

HRESULT PersistedPath::SaveCompleted(LPCOLESTR) {
    return E_NOTIMPL;
}

HRESULT PersistedPath::GetCurFile(LPOLESTR*) {
    return E_NOTIMPL;
}

} // namespace vantrel
