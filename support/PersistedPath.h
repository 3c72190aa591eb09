// The IPersistFile half of a handler that is given its file by path.
#pragma once

#include <windows.h>

#include <objidl.h>

#include <string>

namespace vantrel {

// Only Load does anything; the other methods answer E_NOTIMPL.
class PersistedPath : public IPersistFile {
public:
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) final;
    HRESULT STDMETHODCALLTYPE IsDirty() final;
    // Stores the path and opens nothing.
    HRESULT STDMETHODCALLTYPE Load(LPCOLESTR fileName, DWORD mode) override;
    HRESULT STDMETHODCALLTYPE Save(LPCOLESTR fileName, BOOL remember) final;
    HRESULT STDMETHODCALLTYPE SaveCompleted(LPCOLESTR fileName) final;
    HRESULT STDMETHODCALLTYPE GetCurFile(LPOLESTR* fileName) final;

protected:
    ~PersistedPath() = default;

    // Empty until Load.
    const wchar_t* Path() const { return path_.c_str(); }

private:
    std::wstring path_;
};

} // namespace vantrel
