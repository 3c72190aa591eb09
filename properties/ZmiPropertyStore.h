// The property store: title, dimensions and bit depth of a file given as a stream, read-only.
#pragma once

#include "support/ComObject.h"
#include "support/StreamInitialized.h"

#include <propsys.h>

namespace vantrel {

class ZmiPropertyStore final
    : public ComObject<ZmiPropertyStore, StreamInitialized, IPropertyStore, IPropertyStoreCapabilities> {
public:
    static constexpr InterfaceRow<ZmiPropertyStore> interfaces[] = {
        {&IID_IUnknown, AsBase<IInitializeWithStream>},
        {&IID_IInitializeWithStream, AsBase<IInitializeWithStream>},
        {&IID_IPropertyStore, AsBase<IPropertyStore>},
        {&IID_IPropertyStoreCapabilities, AsBase<IPropertyStoreCapabilities>},
    };

    HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) noexcept override;
    HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key) noexcept override;
    // Rereads the file on each call. S_FALSE when it can't be read, E_UNEXPECTED for a key that is not
    // served; the value then stays as it was. Otherwise it is overwritten without being cleared.
    HRESULT STDMETHODCALLTYPE GetValue(REFPROPERTYKEY key, PROPVARIANT* value) noexcept override;
    // Both return E_UNEXPECTED.
    HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY key, REFPROPVARIANT value) noexcept override;
    HRESULT STDMETHODCALLTYPE Commit() noexcept override;

    // S_FALSE for every key.
    HRESULT STDMETHODCALLTYPE IsPropertyWritable(REFPROPERTYKEY key) noexcept override;

private:
    HRESULT ReadValue(REFPROPERTYKEY key, PROPVARIANT& value) const;
};

} // namespace vantrel
