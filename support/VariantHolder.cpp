#include "support/VariantHolder.h"

#include <comdef.h>

#include <cstring>

namespace vantrel {

static_assert(sizeof(VARIANT) == sizeof(PROPVARIANT));

void VariantHolder::Clear() {
    const HRESULT result = VariantClear(&value_);
    if (FAILED(result))
        _com_issue_error(result);
}

void VariantHolder::AssignText(const wchar_t* text) {
    Clear();
    const BSTR copy = text ? SysAllocString(text) : nullptr;
    if (text && !copy)
        _com_issue_error(E_OUTOFMEMORY);
    V_VT(&value_) = VT_BSTR;
    V_BSTR(&value_) = copy;
}

void VariantHolder::AssignInteger(std::int32_t number) {
    switch (V_VT(&value_)) {
    case VT_I4:
    case VT_ERROR:
        V_I4(&value_) = number;
        break;
    case VT_BOOL:
        V_BOOL(&value_) = number != 0 ? VARIANT_TRUE : VARIANT_FALSE;
        break;
    default:
        Clear();
        V_VT(&value_) = VT_I4;
        V_I4(&value_) = number;
    }
}

void VariantHolder::DetachTo(VARIANT* destination) {
    std::memcpy(destination, &value_, sizeof value_);
    V_VT(&value_) = VT_EMPTY;
}

void VariantHolder::DetachTo(PROPVARIANT* destination) {
    DetachTo(reinterpret_cast<VARIANT*>(destination));
}

} // namespace vantrel
