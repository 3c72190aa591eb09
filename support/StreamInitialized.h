// The IInitializeWithStream part of a handler that receives its file as a stream.
#pragma once

#include "support/Handles.h"

#include <propsys.h>

namespace vantrel {

class StreamInitialized : public IInitializeWithStream {
public:
    // Takes one reference to the stream. E_UNEXPECTED if there is a stream already, which is kept.
    HRESULT STDMETHODCALLTYPE Initialize(IStream* stream, DWORD mode) noexcept final;

protected:
    ~StreamInitialized() = default;

    // Null until Initialize has succeeded.
    IStream* Stream() const { return stream_.get(); }

private:
    UniqueInterface<IStream> stream_;
};

} // namespace vantrel
