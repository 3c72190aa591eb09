// An in-process COM server, loaded by its path.
#pragma once

#include "support/Handles.h"

#include <filesystem>

namespace vantrel::tools {

// Null if the module exports no such function.
template <class Function>
Function FindFunction(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// Stays loaded until destroyed, so it must outlive the objects that it created.
class ServerModule {
public:
    // Throws Failure if the DLL does not load.
    explicit ServerModule(const std::filesystem::path& path);

    // Creates an object through the DLL's class factory; the caller owns the reference. Throws Failure.
    void Create(REFCLSID classId, REFIID interfaceId, void** object) const;

private:
    UniqueModule module_;
};

} // namespace vantrel::tools
