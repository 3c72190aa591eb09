// Replaces a function that a loaded module imports, for the lifetime of the hook.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <utility>

namespace vantrel::tests {

// Calls visit(library name, function name, address slot) for every import; stops at true. The name is null
// for an import by number, as SysAllocString is with Microsoft's linker.
template <class Visit>
bool VisitImports(HMODULE module, Visit visit) {
    auto* const base = reinterpret_cast<std::uint8_t*>(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& table = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + table.VirtualAddress);
    for (; library->Name; ++library) {
        const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA64*>(base + library->OriginalFirstThunk);
        auto* slot = reinterpret_cast<void**>(base + library->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++slot) {
            const char* imported = nullptr;
            if (!IMAGE_SNAP_BY_ORDINAL64(name->u1.Ordinal))
                imported = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData)->Name;
            if (visit(reinterpret_cast<const char*>(base + library->Name), imported, slot))
                return true;
        }
    }
    return false;
}

// Where a module keeps the address of a function that it imports; null if it does not import it.
inline void** FindImport(HMODULE module, const char* function) {
    void** found = nullptr;
    VisitImports(module, [&](const char* library, const char* imported, void** slot) {
        const auto address = [&] { return GetProcAddress(GetModuleHandleA(library), function); };
        if (imported ? std::strcmp(imported, function) == 0 : *slot == reinterpret_cast<void*>(address()))
            found = slot;
        return found != nullptr;
    });
    return found;
}

template <std::size_t size>
struct FunctionName {
    constexpr FunctionName(const char (&name)[size]) { std::copy_n(name, size, text); }
    char text[size];
};

template <FunctionName name, class Signature>
class ImportHook;

// ImportHook<"CreateFileW", decltype(CreateFileW)>: one at a time of each kind. The replacement receives the
// original function before the arguments. If the module doesn't import the function, nothing happens.
template <FunctionName name, class Result, class... Arguments>
class ImportHook<name, Result(Arguments...)> {
public:
    using Function = Result (*)(Arguments...);
    using Replacement = std::function<Result(Function original, Arguments...)>;

    ImportHook(HMODULE module, Replacement replacement)
        : replacement_(std::move(replacement)), slot_(FindImport(module, name.text)) {
        if (!slot_)
            return;
        original_ = reinterpret_cast<Function>(*slot_);
        current_ = this;
        Write(reinterpret_cast<void*>(&Call));
    }
    ImportHook(const ImportHook&) = delete;
    ImportHook& operator=(const ImportHook&) = delete;
    ~ImportHook() {
        if (slot_)
            Write(reinterpret_cast<void*>(original_));
    }

private:
    static Result Call(Arguments... arguments) {
        return current_->replacement_(current_->original_, arguments...);
    }
    void Write(void* address) {
        DWORD protection = 0;
        VirtualProtect(slot_, sizeof *slot_, PAGE_READWRITE, &protection);
        *slot_ = address;
        VirtualProtect(slot_, sizeof *slot_, protection, &protection);
    }

    static inline ImportHook* current_ = nullptr;
    Replacement replacement_;
    void** slot_;
    Function original_ = nullptr;
};

} // namespace vantrel::tests
