// The class factory for all classes of the module.
#pragma once

#include "module/ClassTable.h"
#include "module/ModuleState.h"
#include "support/ComObject.h"

namespace vantrel {

class ClassFactory final : public ComObject<ClassFactory, IClassFactory> {
public:
    static constexpr InterfaceRow<ClassFactory> interfaces[] = {
        {&IID_IUnknown, AsBase<IClassFactory>},
        {&IID_IClassFactory, AsBase<IClassFactory>},
    };

    explicit ClassFactory(CreateInstanceFn create) : create_(create) { ModuleAddRef(); }
    ~ClassFactory() { ModuleRelease(); }

    // Refuses aggregation, leaving the out pointer as it was.
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override;
    // Not balanced or checked: an extra unlock drives the module's count below zero.
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override;

private:
    CreateInstanceFn create_;
};

} // namespace vantrel
