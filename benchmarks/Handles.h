// Owners of the handles that the measured requests and their rivals hand out.
#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace vantrel::bench {

template <auto close>
struct Closer {
    template <class Handle>
    void operator()(Handle handle) const noexcept {
        close(handle);
    }
};

template <class Handle, auto close>
using UniqueHandle = std::unique_ptr<std::remove_pointer_t<Handle>, Closer<close>>;

using UniqueModule = UniqueHandle<HMODULE, FreeLibrary>;
using UniqueKernelHandle = UniqueHandle<HANDLE, CloseHandle>;
using UniqueBitmap = UniqueHandle<HBITMAP, DeleteObject>;
using UniqueDc = UniqueHandle<HDC, DeleteDC>;

} // namespace vantrel::bench
