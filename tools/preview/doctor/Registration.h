// The 28 values that the library's registration writes, and which of them are missing or changed.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace vantrel::tools {

struct RegistrationValue {
    HKEY root;
    std::wstring key;
    const wchar_t* name; // null: the key's default value
    std::wstring data;   // empty: the path of the library

    std::optional<std::wstring> Read() const;
    // "HKCU\key, value name".
    std::wstring Name() const;
};

std::vector<RegistrationValue> ExpectedRegistration();

} // namespace vantrel::tools
