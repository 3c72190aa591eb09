// Read-only questions to the registry.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace vantrel::tools {

// The value's text, environment variables expanded; empty when it is missing or not a string. A null name is
// the key's default value.
std::optional<std::wstring> ReadText(HKEY root, const std::wstring& key, const wchar_t* name = nullptr);

// The value's number, or 0 when it is missing or not a REG_DWORD.
DWORD ReadNumber(HKEY root, const std::wstring& key, const wchar_t* name);

bool KeyExists(HKEY root, const std::wstring& key);

} // namespace vantrel::tools
