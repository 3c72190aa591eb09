// What GCC's stack protector calls. The toolchain's own version gets its random number from a cryptographic
// provider as soon as a module is loaded, and so loads that provider and its libraries into every host, under
// the loader lock.
#include <windows.h>

#include <bit>
#include <cstdint>

namespace {

// As unpredictable as what Microsoft's startup code uses for its guard. The lowest byte is zero, so that no
// overrun by a string can read it or write it.
std::uintptr_t MakeGuard() {
    FILETIME now;
    GetSystemTimePreciseAsFileTime(&now);
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    std::uint64_t guard = std::uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime;
    guard ^= std::rotl(static_cast<std::uint64_t>(counter.QuadPart), 24);
    guard ^= std::uint64_t{GetCurrentProcessId()} << 40 ^ std::uint64_t{GetCurrentThreadId()} << 16;
    guard ^= std::rotl(static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&now)), 32);
    guard *= 0x9E3779B97F4A7C15; // spreads the entropy into the upper half
    return guard & ~std::uint64_t{0xFF};
}

} // namespace

extern "C" {

std::uintptr_t __stack_chk_guard = MakeGuard();

[[noreturn]] void __stack_chk_fail() {
    // __fastfail, which not all of mingw-w64's headers have.
    asm volatile("int $0x29" : : "c"(FAST_FAIL_STACK_COOKIE_CHECK_FAILURE));
    __builtin_unreachable();
}
}
