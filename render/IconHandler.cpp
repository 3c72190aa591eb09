#include "render/IconHandler.h"

#include "render/RenderImage.h"
#include "support/Boundary.h"

namespace vantrel {

HRESULT IconHandler::GetIconLocation(UINT, LPWSTR, UINT, int*, UINT* resultFlags) noexcept {
    if (!resultFlags)
        return E_POINTER;
    *resultFlags = GIL_NOTFILENAME | GIL_DONTCACHE;
    return S_OK;
}

HRESULT IconHandler::Extract(LPCWSTR, UINT, HICON* largeIcon, HICON* smallIcon, UINT iconSize) noexcept {
    return GuardBoundary(E_FAIL, [&] {
        return RenderImage({.path = Path(),
                            .largeIcon = largeIcon,
                            .largeSize = LOWORD(iconSize),
                            .smallIcon = smallIcon,
                            .smallSize = HIWORD(iconSize)})
                   ? S_OK
                   : E_FAIL;
    });
}

} // namespace vantrel
