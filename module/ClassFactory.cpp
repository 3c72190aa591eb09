#include "module/ClassFactory.h"

#include "support/Boundary.h"

namespace vantrel {

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept {
    if (outer)
        return CLASS_E_NOAGGREGATION;
    return GuardBoundary(E_FAIL, [&] { return create_(iid, object); });
}

HRESULT ClassFactory::LockServer(BOOL lock) noexcept {
    if (lock)
        ModuleAddRef();
    else
        ModuleRelease();
    return S_OK;
}

} // namespace vantrel
