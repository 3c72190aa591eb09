#include "support/PersistedPath.h"

#include "support/Boundary.h"

namespace vantrel {

HRESULT PersistedPath::Load(LPCOLESTR fileName, DWORD) noexcept {
    return GuardBoundary(E_FAIL, [&] {
        path_ = fileName ? fileName : L"";
        return S_OK;
    });
}

HRESULT PersistedPath::GetClassID(CLSID*) noexcept {
    return E_NOTIMPL;
}

HRESULT PersistedPath::IsDirty() noexcept {
    return E_NOTIMPL;
}

HRESULT PersistedPath::Save(LPCOLESTR, BOOL) noexcept {
    return E_NOTIMPL;
}

HRESULT PersistedPath::SaveCompleted(LPCOLESTR) noexcept {
    return E_NOTIMPL;
}

HRESULT PersistedPath::GetCurFile(LPOLESTR*) noexcept {
    return E_NOTIMPL;
}

} // namespace vantrel
