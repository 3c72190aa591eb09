#include "tools/preview/doctor/RegistryReader.h"

namespace vantrel::tools {

std::optional<std::wstring> ReadText(HKEY root, const std::wstring& key, const wchar_t* name) {
    DWORD bytes = 0;
    if (RegGetValueW(root, key.c_str(), name, RRF_RT_REG_SZ, nullptr, nullptr, &bytes) != ERROR_SUCCESS)
        return std::nullopt;
    std::wstring text(bytes / sizeof(wchar_t) + 1, L'\0');
    bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (RegGetValueW(root, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text.data(), &bytes) != ERROR_SUCCESS)
        return std::nullopt;
    text.resize(text.find(L'\0'));
    return text;
}

DWORD ReadNumber(HKEY root, const std::wstring& key, const wchar_t* name) {
    DWORD number = 0;
    DWORD bytes = sizeof(number);
    const LSTATUS status = RegGetValueW(root, key.c_str(), name, RRF_RT_REG_DWORD, nullptr, &number, &bytes);
    return status == ERROR_SUCCESS ? number : 0;
}

bool KeyExists(HKEY root, const std::wstring& key) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, key.c_str(), 0, KEY_QUERY_VALUE, &opened) != ERROR_SUCCESS)
        return false;
    RegCloseKey(opened);
    return true;
}

} // namespace vantrel::tools
