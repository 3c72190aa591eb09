// A growable run of bytes that is not zeroed before it is filled.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace vantrel {

// Default-initialises what resize() adds: pixels are read over it at once, and zeroing them first costs as
// much.
template <class T>
struct UninitializedAllocator : std::allocator<T> {
    template <class U>
    struct rebind {
        using other = UninitializedAllocator<U>;
    };

    template <class U>
    void construct(U* place) {
        ::new (static_cast<void*>(place)) U;
    }
    template <class U, class... Arguments>
    void construct(U* place, Arguments&&... arguments) {
        ::new (static_cast<void*>(place)) U(std::forward<Arguments>(arguments)...);
    }
};

using ByteBuffer = std::vector<std::uint8_t, UninitializedAllocator<std::uint8_t>>;

} // namespace vantrel
