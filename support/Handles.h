// Move-only owners of Windows handles: one line per kind of handle says how it is closed.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <memory>
#include <type_traits>

namespace vantrel {

template <auto close>
struct HandleCloser {
    template <class Handle>
    void operator()(Handle handle) const noexcept {
        close(handle);
    }
};

// Null means none; APIs that return INVALID_HANDLE_VALUE are mapped where they are called.
template <class Handle, auto close>
using UniqueHandle = std::unique_ptr<std::remove_pointer_t<Handle>, HandleCloser<close>>;

inline void ReleaseScreenDc(HDC dc) {
    ReleaseDC(nullptr, dc);
}

inline void ReleaseInterface(IUnknown* object) {
    object->Release();
}

// One reference to a COM object.
template <class Interface>
using UniqueInterface = UniqueHandle<Interface*, ReleaseInterface>;

using UniqueModule = UniqueHandle<HMODULE, FreeLibrary>;
using UniqueLocalMemory = UniqueHandle<HLOCAL, LocalFree>;
using UniqueKernelHandle = UniqueHandle<HANDLE, CloseHandle>;
using UniqueSearch = UniqueHandle<HANDLE, FindClose>;
using UniqueBitmap = UniqueHandle<HBITMAP, DeleteObject>;
using UniqueIcon = UniqueHandle<HICON, DestroyIcon>;
using UniqueBrush = UniqueHandle<HBRUSH, DeleteObject>;
using UniqueFont = UniqueHandle<HFONT, DeleteObject>;
using UniqueDc = UniqueHandle<HDC, DeleteDC>;
using UniqueScreenDc = UniqueHandle<HDC, ReleaseScreenDc>;

} // namespace vantrel
