// A VARIANT that clears itself and can transfer its value to a caller.
#pragma once

#include <windows.h>

#include <oleauto.h>
#include <propidl.h>

#include <cstdint>

namespace vantrel {

class VariantHolder {
public:
    VariantHolder() { VariantInit(&value_); }
    VariantHolder(const VariantHolder&) = delete;
    VariantHolder& operator=(const VariantHolder&) = delete;
    ~VariantHolder() { VariantClear(&value_); }

    // VT_BSTR; a null text gives a null BSTR. Throws _com_error when out of memory or when the old value
    // can't be cleared.
    void AssignText(const wchar_t* text);
    // Replaces the number of a VT_I4 or VT_ERROR and the truth of a VT_BOOL; anything else becomes VT_I4.
    // Throws _com_error when the old value can't be cleared.
    void AssignInteger(std::int32_t number);

    // Moves the value into the caller's variant, whose old contents are overwritten without being cleared.
    void DetachTo(VARIANT* destination);
    void DetachTo(PROPVARIANT* destination);

private:
    void Clear();

    VARIANT value_;
};

} // namespace vantrel
