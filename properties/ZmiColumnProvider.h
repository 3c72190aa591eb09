// The column provider: the image dimensions as a column of detail views.
#pragma once

#include "support/ComObject.h"
#include "support/IColumnProvider.h"

namespace vantrel {

class ZmiColumnProvider final : public ComObject<ZmiColumnProvider, IColumnProvider> {
public:
    static constexpr InterfaceRow<ZmiColumnProvider> interfaces[] = {
        {&IID_IUnknown, AsBase<IColumnProvider>},
        {&IID_IColumnProvider, AsBase<IColumnProvider>},
    };

    // The folder is ignored.
    HRESULT STDMETHODCALLTYPE Initialize(LPCSHCOLUMNINIT folder) noexcept override;
    // S_FALSE for any index but 0. Title and description stay as the host passed them.
    HRESULT STDMETHODCALLTYPE GetColumnInfo(DWORD index, SHCOLUMNINFO* info) noexcept override;
    // S_FALSE, the value untouched, for anything but the dimensions of a readable, online .zmi file; no other
    // file is opened. Otherwise the value is overwritten without being cleared.
    HRESULT STDMETHODCALLTYPE GetItemData(LPCSHCOLUMNID column, LPCSHCOLUMNDATA item,
                                          VARIANT* value) noexcept override;
};

} // namespace vantrel
