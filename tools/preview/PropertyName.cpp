#include "tools/preview/PropertyName.h"

#include "tools/terminal/Failure.h"

#include <objbase.h>

#include <array>

namespace vantrel::tools {

namespace {

constexpr GUID imageFormat = {0x6444048F, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
constexpr GUID summaryFormat = {0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}};

struct NamedProperty {
    PROPERTYKEY key;
    const wchar_t* name;
};
constexpr std::array<NamedProperty, 3> namedProperties = {{
    {{summaryFormat, 2}, L"title"},
    {{imageFormat, 13}, L"dimensions"},
    {{imageFormat, 7}, L"bit depth"},
}};

} // namespace

std::wstring PropertyName(const PROPERTYKEY& key) {
    for (const auto& [known, name] : namedProperties)
        if (known.pid == key.pid && IsEqualGUID(known.fmtid, key.fmtid))
            return name;
    std::array<wchar_t, 40> format{};
    StringFromGUID2(key.fmtid, format.data(), static_cast<int>(format.size()));
    return std::wstring(format.data()) + L" " + std::to_wstring(key.pid);
}

std::wstring TakeText(PROPVARIANT& value) {
    const VARTYPE type = value.vt;
    std::wstring text;
    if (type == VT_BSTR)
        text.assign(value.bstrVal ? value.bstrVal : L"", SysStringLen(value.bstrVal));
    else if (type == VT_LPWSTR)
        text = value.pwszVal ? value.pwszVal : L"";
    else if (type == VT_I4)
        text = std::to_wstring(value.lVal);
    else if (type == VT_UI4)
        text = std::to_wstring(value.ulVal);
    PropVariantClear(&value);
    if (type != VT_BSTR && type != VT_LPWSTR && type != VT_I4 && type != VT_UI4)
        throw Failure(L"a value of the unexpected type " + std::to_wstring(type), DISP_E_TYPEMISMATCH);
    return text;
}

} // namespace vantrel::tools
