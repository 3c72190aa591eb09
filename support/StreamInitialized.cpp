#include "support/StreamInitialized.h"

namespace vantrel {

HRESULT StreamInitialized::Initialize(IStream* stream, DWORD) noexcept {
    if (stream_)
        return E_UNEXPECTED;
    if (!stream)
        return E_POINTER;
    void* held = nullptr;
    const HRESULT result = stream->QueryInterface(IID_IStream, &held);
    if (SUCCEEDED(result))
        stream_.reset(static_cast<IStream*>(held));
    return result;
}

} // namespace vantrel
