// The extract-image handler: a picture by path, for hosts of the older thumbnail interface.
#pragma once

#include "support/ComObject.h"
#include "support/PersistedPath.h"

#include <shobjidl.h>

#include <cstdint>

namespace vantrel {

class ExtractImageHandler final : public ComObject<ExtractImageHandler, IExtractImage2, PersistedPath> {
public:
    static constexpr InterfaceRow<ExtractImageHandler> interfaces[] = {
        {&IID_IUnknown, AsBase<IExtractImage2>},
        {&IID_IExtractImage, AsBase<IExtractImage2>},
        {&IID_IExtractImage2, AsBase<IExtractImage2>},
        {&IID_IPersistFile, AsBase<IPersistFile>},
    };

    // Forgets the size that GetLocation stored.
    HRESULT STDMETHODCALLTYPE Load(LPCOLESTR fileName, DWORD mode) noexcept override;

    // Stores the size and adds IEIFLAG_REFRESH to the flags; path buffer, priority and colour depth stay
    // untouched. E_PENDING for IEIFLAG_ASYNC: the host calls Extract later, on a thread of its choice.
    HRESULT STDMETHODCALLTYPE GetLocation(LPWSTR pathBuffer, DWORD bufferLength, DWORD* priority,
                                          const SIZE* size, DWORD colorDepth, DWORD* flags) noexcept override;
    // A square request gives an opaque bitmap of the fitted size, any other one of exactly the requested size
    // with the picture centred on the key colour.
    HRESULT STDMETHODCALLTYPE Extract(HBITMAP* bitmap) noexcept override;
    // The file's last-write time. S_OK if the file could be opened, else E_FAIL.
    HRESULT STDMETHODCALLTYPE GetDateStamp(FILETIME* dateStamp) noexcept override;

private:
    std::int32_t requestedWidth_ = 0;
    std::int32_t requestedHeight_ = 0;
};

} // namespace vantrel
