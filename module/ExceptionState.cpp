// What GCC's runtime needs in order to throw: a thread's exception state, and memory for its exceptions. Both
// lie in the module's thread-local storage, which the loader allocates with each thread and frees with the
// thread or the module. So throwing needs no heap and no slot, and unloading leaves nothing behind. Linked
// statically, the runtime's own would need both, and keep them in the host when it unloads the library.

#if defined(__GNUC__) && defined(__x86_64__)

#include <windows.h>

#include <unwind.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iterator>

// From the C runtime: the module's place in each thread's array of blocks, and where the first copy begins
// from which the loader makes them.
extern "C" ULONG _tls_index;
extern "C" char* _tls_start;

// Replaces the runtime's own, which names the exception on stderr, where no host shows it, and pulls in a
// demangler.
namespace __gnu_cxx {
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

// In front of each exception is the runtime's header: that of the ABI, 2.2.1, ten words and the unwinder's
// part, and a reference count.
constexpr std::size_t alignment = alignof(_Unwind_Exception);
constexpr std::size_t headerBytes = 10 * sizeof(void*) + sizeof(_Unwind_Exception) + alignment;
constexpr std::size_t largestException = 64; // of those that the library throws
constexpr std::size_t slotBytes = headerBytes + largestException;

// A thread needs two exceptions at a time when making the first one throws, for lack of memory.
struct ThreadBlock {
    ThreadState state;
    bool isTaken[2];
    std::byte slots[2 * slotBytes + alignment]; // the loader may not align it
};

// The loader copies it for each thread; nothing else uses it.
[[gnu::section(".tls$V"), gnu::used]] constinit ThreadBlock g_firstCopy{};

ThreadBlock& BlockOfThread() {
    std::byte** blocks; // the array that the PE format describes; GCC warns of NtCurrentTeb
    asm("movq %%gs:0x58, %0" : "=r"(blocks));
    const auto offset =
        reinterpret_cast<std::uintptr_t>(&g_firstCopy) - reinterpret_cast<std::uintptr_t>(&_tls_start);
    return *reinterpret_cast<ThreadBlock*>(blocks[_tls_index] + offset);
}

std::byte* SlotAt(ThreadBlock& block, std::size_t index) {
    const auto begin = reinterpret_cast<std::uintptr_t>(block.slots);
    return block.slots + (alignment - begin % alignment) + index * slotBytes;
}

} // namespace

// These replace the runtime's functions of the same names. An exception must end on the thread that threw it;
// std::exception_ptr, which could take it elsewhere, would not link.
extern "C" {

ThreadState* __cxa_get_globals() noexcept {
    return &BlockOfThread().state;
}

ThreadState* __cxa_get_globals_fast() noexcept {
    return __cxa_get_globals();
}

void* __cxa_allocate_exception(std::size_t size) noexcept {
    ThreadBlock& block = BlockOfThread();
    bool* const isTaken = std::ranges::find(block.isTaken, false);
    std::byte* memory;
    if (size <= largestException && isTaken != std::end(block.isTaken)) {
        *isTaken = true;
        memory = SlotAt(block, static_cast<std::size_t>(isTaken - block.isTaken));
    } else {
        memory = static_cast<std::byte*>(std::malloc(headerBytes + size));
    }
    if (!memory)
        std::terminate();
    std::memset(memory, 0, headerBytes);
    return memory + headerBytes;
}

void __cxa_free_exception(void* exception) noexcept {
    ThreadBlock& block = BlockOfThread();
    std::byte* const memory = static_cast<std::byte*>(exception) - headerBytes;
    for (std::size_t i = 0; i < std::size(block.isTaken); ++i) {
        if (memory == SlotAt(block, i)) {
            block.isTaken[i] = false;
            return;
        }
    }
    std::free(memory);
}
}

#endif
