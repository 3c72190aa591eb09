#include "tools/preview/RegistryReader.h"

#include "support/Handles.h"

namespace vantrel::tools {

RegistryText ReadValue(HKEY root, const std::wstring& key, const std::wstring& name) {
    std::wstring text;
    LSTATUS status = ERROR_MORE_DATA;
    for (std::size_t size = MAX_PATH; status == ERROR_MORE_DATA; size *= 2) {
        text.resize(size);
        auto bytes = static_cast<DWORD>(size * sizeof(wchar_t));
        status = RegGetValueW(root, key.c_str(), name.c_str(), RRF_RT_REG_SZ, nullptr, text.data(), &bytes);
    }
    text.resize(status == ERROR_SUCCESS ? text.find(L'\0') : 0);
    return {status == ERROR_PATH_NOT_FOUND ? ERROR_FILE_NOT_FOUND : status, text};
}

std::optional<std::wstring> ReadText(HKEY root, const std::wstring& key, const std::wstring& name) {
    RegistryText value = ReadValue(root, key, name);
    return value.status == ERROR_SUCCESS ? std::optional(std::move(value.text)) : std::nullopt;
}

DWORD ReadNumber(HKEY root, const std::wstring& key, const wchar_t* name, DWORD otherwise) {
    DWORD number = 0;
    DWORD bytes = sizeof(number);
    const LSTATUS status = RegGetValueW(root, key.c_str(), name, RRF_RT_REG_DWORD, nullptr, &number, &bytes);
    return status == ERROR_SUCCESS ? number : otherwise;
}

bool KeyExists(HKEY root, const std::wstring& key) {
    HKEY opened = nullptr;
    const LSTATUS status = RegOpenKeyExW(root, key.c_str(), 0, KEY_QUERY_VALUE, &opened);
    const UniqueHandle<HKEY, RegCloseKey> owner(opened);
    return status == ERROR_SUCCESS;
}

} // namespace vantrel::tools
