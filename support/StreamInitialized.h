// The IInitializeWithStream half of a handler that is given its file as a stream.
#pragma once

#include "support/Handles.h"

#include <propsys.h>

namespace vantrel {

class StreamInitialized : public IInitializeWithStream {
public:
    // Takes one reference to the stream. E_UNEXPECTED when one is held already, which then stays.
    HRESULT STDMETHODCALLTYPE Initialize(IStream* stream, DWORD mode) noexcept final;

protected:
    ~StreamInitialized() = default;

    // Null until Initialize has succeeded.
    IStream* Stream() const { return stream_.get(); }

private:
    UniqueInterface<IStream> stream_;
};

} // namespace vantrel
