// Where GCC's runtime keeps its per-thread exception state: in this module's own slot, so that unloading
// leaves nothing behind. Linked statically, the runtime would leak one thread-local slot of the process and
// its emergency pool each time a host loads the library and an exception occurs.

#ifdef __GNUC__

#include <windows.h>

#include <cstdlib>
#include <exception>

namespace __gnu_cxx {
void __freeres(); // frees the emergency pool

// Replaces the runtime's own, which names the exception on stderr, where no host shows it, and pulls in a
// demangler.
void __verbose_terminate_handler() {
    std::abort();
}
} // namespace __gnu_cxx

namespace {

// As in the Itanium C++ ABI, 2.2.2.
struct ThreadState {
    void* caughtExceptions;
    unsigned int uncaughtExceptions;
};

DWORD g_slot = FLS_OUT_OF_INDEXES;

void WINAPI FreeState(void* state) {
    std::free(state);
}

// The loader calls this before DllMain, on loading and on unloading. At process exit nothing needs to be
// freed.
void NTAPI OnLoader(void*, DWORD reason, void* processEnds) {
    if (reason == DLL_PROCESS_ATTACH)
        g_slot = FlsAlloc(FreeState);
    if (reason == DLL_PROCESS_DETACH && !processEnds) {
        FlsFree(g_slot); // along with every thread's state
        __gnu_cxx::__freeres();
    }
}

} // namespace

extern "C" {

// Between the C runtime's own first and last callbacks.
[[gnu::section(".CRT$XLM"), gnu::used]] const PIMAGE_TLS_CALLBACK vantrelOnLoader = OnLoader;

// Both replace the runtime's functions of the same names, which don't handle a failed allocation any better.
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
