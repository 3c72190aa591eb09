#include "render/ThumbnailProvider.h"

#include "render/RenderImage.h"
#include "support/Boundary.h"

namespace vantrel {

HRESULT ThumbnailProvider::GetThumbnail(UINT edge, HBITMAP* bitmap, WTS_ALPHATYPE* alphaType) noexcept {
    if (!bitmap || !alphaType)
        return E_POINTER;
    return GuardBoundary(E_FAIL, [&] {
        if (!RenderImage({.stream = Stream(),
                          .bitmap = bitmap,
                          .width = edge,
                          .height = edge,
                          .fitMode = FitMode::Fitted}))
            return E_FAIL;
        *alphaType = WTSAT_RGB;
        return S_OK;
    });
}

} // namespace vantrel
