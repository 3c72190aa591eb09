#include "support/SecurityApi.h"

#include "support/RegistryKey.h"

#include <sddl.h>

#include <cstring>
#include <new>

namespace vantrel {

SecurityApi::SecurityApi() : module_(LoadLibraryW(L"advapi32.dll")) {}

std::unique_ptr<std::byte[]> SecurityApi::MakeSecurityDescriptor(const wchar_t* sddl) {
    if (!convertStringSecurityDescriptor_ && module_) {
        const FARPROC found =
            GetProcAddress(module_.get(), "ConvertStringSecurityDescriptorToSecurityDescriptorW");
        std::memcpy(&convertStringSecurityDescriptor_, &found, sizeof found);
    }
    PSECURITY_DESCRIPTOR converted = nullptr;
    ULONG size = 0;
    if (!convertStringSecurityDescriptor_ ||
        !convertStringSecurityDescriptor_(sddl, SDDL_REVISION_1, &converted, &size))
        return nullptr;
    const UniqueLocalMemory owner(converted);
    if (size == 0)
        return nullptr;
    std::unique_ptr<std::byte[]> copy(new (std::nothrow) std::byte[size]);
    if (copy)
        std::memcpy(copy.get(), converted, size);
    return copy;
}

BOOL GrantEveryoneFullAccess(SecurityApi& api, HKEY root, const wchar_t* keyPath) {
    const auto descriptor = api.MakeSecurityDescriptor(L"D:(A;OICI;GA;;;WD)");
    RegistryKey key;
    return descriptor &&
           RegCreateKeyExW(root, keyPath, 0, nullptr, REG_OPTION_NON_VOLATILE, WRITE_DAC, nullptr, key.Put(),
                           nullptr) == ERROR_SUCCESS &&
           RegSetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, descriptor.get()) == ERROR_SUCCESS;
}

} // namespace vantrel
