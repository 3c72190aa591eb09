// The thumbnail provider: a file's stream in, a bitmap of the fitted size out.
#pragma once

#include "support/ComObject.h"
#include "support/StreamInitialized.h"

#include <thumbcache.h>

namespace vantrel {

class ThumbnailProvider final : public ComObject<ThumbnailProvider, StreamInitialized, IThumbnailProvider> {
public:
    static constexpr InterfaceRow<ThumbnailProvider> interfaces[] = {
        {&IID_IUnknown, AsBase<IInitializeWithStream>},
        {&IID_IInitializeWithStream, AsBase<IInitializeWithStream>},
        {&__uuidof(IThumbnailProvider), AsBase<IThumbnailProvider>},
    };

    // The picture fitted into edge x edge pixels, opaque. On failure both outputs stay as they were.
    HRESULT STDMETHODCALLTYPE GetThumbnail(UINT edge, HBITMAP* bitmap,
                                           WTS_ALPHATYPE* alphaType) noexcept override;
};

} // namespace vantrel
