// The icon handler: an icon for each file, drawn from its own picture.
#pragma once

#include "support/ComObject.h"
#include "support/IColumnProvider.h"
#include "support/PersistedPath.h"

#include <shlobj.h>

namespace vantrel {

class IconHandler final : public ComObject<IconHandler, IExtractIconW, PersistedPath> {
public:
    static constexpr InterfaceRow<IconHandler> interfaces[] = {
        {&IID_IUnknown, AsBase<IExtractIconW>},
        {&IID_IExtractIconW, AsBase<IExtractIconW>},
        {&IID_IPersistFile, AsBase<IPersistFile>},
        // Intentional: the column provider's identifier also gets the icon interface here.
        {&IID_IColumnProvider, AsBase<IExtractIconW>},
    };

    // Only sets the result flags: there is no icon file, and nothing is to be cached.
    HRESULT STDMETHODCALLTYPE GetIconLocation(UINT flags, LPWSTR iconFile, UINT bufferLength, int* index,
                                              UINT* resultFlags) noexcept override;
    // iconSize holds the large icon's edge in its low and the small one's in its high 16 bits; a null pointer
    // means that the icon is not wanted. If only the small one fails, the result is E_FAIL and the large one
    // still belongs to the caller.
    HRESULT STDMETHODCALLTYPE Extract(LPCWSTR file, UINT index, HICON* largeIcon, HICON* smallIcon,
                                      UINT iconSize) noexcept override;
};

} // namespace vantrel
