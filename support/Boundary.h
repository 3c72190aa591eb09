// The guard through which every method and export that can throw runs its body: no exception leaves the
// module.
#pragma once

#include <windows.h>

#include <comdef.h>

#include <new>
#include <utility>

namespace vantrel {

// The body's result, or the HRESULT for what it threw: E_OUTOFMEMORY for exhausted memory, a COM error's own
// code, and for anything else `failure`.
template <class Body>
HRESULT GuardBoundary(HRESULT failure, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const _com_error& error) {
        return error.Error();
    } catch (...) {
        return failure;
    }
}

} // namespace vantrel
