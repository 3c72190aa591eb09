// The 28 values of a registration: 27 of classes, for the machine or for one user, and the property
// handler's.
#pragma once

#include <string>
#include <vector>

namespace vantrel::tools {

struct RegistrationValue {
    std::wstring key;
    const wchar_t* name;       // null: the key's default value
    std::wstring data;         // empty: the path of the library
    bool isForMachine = false; // counts only under HKEY_LOCAL_MACHINE
};

std::vector<RegistrationValue> ExpectedRegistration();

} // namespace vantrel::tools
