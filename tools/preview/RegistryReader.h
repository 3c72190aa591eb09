// Read-only registry queries.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace vantrel::tools {

struct RegistryText {
    LSTATUS status = ERROR_FILE_NOT_FOUND; // ERROR_UNSUPPORTED_TYPE: the value is not a string
    std::wstring text{};

    bool IsMissing() const { return status == ERROR_FILE_NOT_FOUND; }
};

// A string value with its environment variables expanded. An empty name is the key's default value.
RegistryText ReadValue(HKEY root, const std::wstring& key, const std::wstring& name = {});

// The value's text; empty if it can't be read.
std::optional<std::wstring> ReadText(HKEY root, const std::wstring& key, const std::wstring& name = {});

// The value's number, or the default if it is missing or not a REG_DWORD.
DWORD ReadNumber(HKEY root, const std::wstring& key, const wchar_t* name, DWORD otherwise = 0);

bool KeyExists(HKEY root, const std::wstring& key);

} // namespace vantrel::tools
