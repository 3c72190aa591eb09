// The IPersistFile part of a handler that receives its file by path.
#pragma once

#include <windows.h>

#include <objidl.h>

#include <string>

namespace vantrel {

// Only Load does anything; the other methods return E_NOTIMPL.
class PersistedPath : public IPersistFile {
public:
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) noexcept final;
    HRESULT STDMETHODCALLTYPE IsDirty() noexcept final;
    // Stores the path, null being the empty one, and opens nothing. E_OUTOFMEMORY if it can't be stored.
    HRESULT STDMETHODCALLTYPE Load(LPCOLESTR fileName, DWORD mode) noexcept override;
    HRESULT STDMETHODCALLTYPE Save(LPCOLESTR fileName, BOOL remember) noexcept final;
    HRESULT STDMETHODCALLTYPE SaveCompleted(LPCOLESTR fileName) noexcept final;
    HRESULT STDMETHODCALLTYPE GetCurFile(LPOLESTR* fileName) noexcept final;

protected:
    ~PersistedPath() = default;

    // Empty until Load.
    const wchar_t* Path() const { return path_.c_str(); }

private:
    std::wstring path_;
};

} // namespace vantrel
