// The security functions of advapi32, loaded at run time.
#pragma once

#include "support/Handles.h"

#include <windows.h>

#include <cstddef>
#include <memory>

namespace vantrel {

class SecurityApi {
public:
    SecurityApi();
    SecurityApi(const SecurityApi&) = delete;
    SecurityApi& operator=(const SecurityApi&) = delete;

    // A self-relative security descriptor from SDDL text; null on any failure.
    std::unique_ptr<std::byte[]> MakeSecurityDescriptor(const wchar_t* sddl);

private:
    using ConvertFn = BOOL(WINAPI*)(LPCWSTR sddl, DWORD revision, PSECURITY_DESCRIPTOR* descriptor,
                                    ULONG* size);

    UniqueModule module_;
    ConvertFn convertStringSecurityDescriptor_ = nullptr; // resolved on first use
};

// Grants everyone full access to a key, inherited by everything below; creates the key if it is missing.
BOOL GrantEveryoneFullAccess(SecurityApi& api, HKEY root, const wchar_t* keyPath);

} // namespace vantrel
