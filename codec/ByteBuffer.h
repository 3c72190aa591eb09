// A growable byte buffer for file contents.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

namespace vantrel {

// Starts at a cache line, which makes reading files into it cheaper, and default-initialises what resize()
// adds: it is overwritten at once, and zeroing it first would cost as much.
template <class T>
struct ReadBufferAllocator {
    using value_type = T;
    static constexpr std::align_val_t alignment{64};

    ReadBufferAllocator() = default;
    template <class U>
    ReadBufferAllocator(const ReadBufferAllocator<U>&) noexcept {}
    bool operator==(const ReadBufferAllocator&) const = default;

    T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T), alignment)); }
    void deallocate(T* begin, std::size_t) noexcept { ::operator delete(begin, alignment); }

    template <class U>
    void construct(U* place) {
        ::new (static_cast<void*>(place)) U;
    }
    template <class U, class... Arguments>
    void construct(U* place, Arguments&&... arguments) {
        ::new (static_cast<void*>(place)) U(std::forward<Arguments>(arguments)...);
    }
};

using ByteBuffer = std::vector<std::uint8_t, ReadBufferAllocator<std::uint8_t>>;

} // namespace vantrel
