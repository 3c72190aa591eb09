// Where GCC's runtime keeps a thread's state of exceptions: in this module's own slot, so that unloading
// leaves nothing behind. Linked statically, the runtime would keep one thread-local slot of the process and
// its emergency pool for each time that a host has loaded the library and met an exception.

#ifdef __GNUC__

#include <windows.h>

#include <cstdlib>
#include <exception>

namespace __gnu_cxx {
void __freeres(); // frees the emergency pool
}

namespace {

// As the Itanium C++ ABI has it, 2.2.2.
struct ThreadState {
    void* caughtExceptions;
    unsigned int uncaughtExceptions;
};

DWORD g_slot = FLS_OUT_OF_INDEXES;

void WINAPI FreeState(void* state) {
    std::free(state);
}

// The loader calls this before DllMain, on loading and on unloading. At the end of the process there is
// nothing to give back to.
void NTAPI OnLoader(void*, DWORD reason, void* processEnds) {
    if (reason == DLL_PROCESS_ATTACH)
        g_slot = FlsAlloc(FreeState);
    if (reason == DLL_PROCESS_DETACH && !processEnds) {
        FlsFree(g_slot); // with every thread's state
        __gnu_cxx::__freeres();
    }
}

} // namespace

extern "C" {

// Between the first and the last callback of the C runtime's own.
[[gnu::section(".CRT$XLM"), gnu::used]] const PIMAGE_TLS_CALLBACK vantrelOnLoader = OnLoader;

// Both stand in for the runtime's own functions of the same names, which ask no more of a failed allocation,
// either.
ThreadState* __cxa_get_globals() noexcept {
    auto* state = static_cast<ThreadState*>(FlsGetValue(g_slot));
    if (!state) {
        state = static_cast<ThreadState*>(std::calloc(1, sizeof(ThreadState)));
        if (!state || !FlsSetValue(g_slot, state))
            std::abort();
    }
    return state;
}

ThreadState* __cxa_get_globals_fast() noexcept {
    return __cxa_get_globals();
}
}

#endif
