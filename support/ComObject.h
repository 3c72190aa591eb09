// What every COM object of the module shares: reference count, QueryInterface over a table, creation.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <atomic>
#include <new>

namespace vantrel {

// One identifier that an object supports and the base that is returned for it.
template <class Object>
struct InterfaceRow {
    const IID* iid;
    void* (*base)(Object*);
};

// The base of a class that implements Bases (interfaces, or classes that implement one). The final Derived
// declares `static constexpr InterfaceRow<Derived> interfaces[]`, searched in order, with AsBase<Base> as
// each row's base.
template <class Derived, class... Bases>
class ComObject : public Bases... {
public:
    ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept final {
        if (!object)
            return E_POINTER;
        *object = nullptr;
        for (const InterfaceRow<Derived>& row : Derived::interfaces) {
            if (IsEqualIID(*row.iid, iid)) {
                *object = row.base(static_cast<Derived*>(this));
                AddRef();
                return S_OK;
            }
        }
        return E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() noexcept final { return ++refCount_; }

    ULONG STDMETHODCALLTYPE Release() noexcept final {
        const ULONG left = --refCount_;
        if (left == 0)
            delete static_cast<Derived*>(this);
        return left;
    }

protected:
    ~ComObject() = default;

private:
    std::atomic<ULONG> refCount_ = 1;
};

template <class Base, class Object>
void* AsBase(Object* object) {
    return static_cast<Base*>(object);
}

// Creates an object of a class and returns the requested interface. E_OUTOFMEMORY when there is no memory for
// it, else the result of QueryInterface; an unsupported interface destroys the object at once. Propagates
// what its members throw.
template <class Class, class... Arguments>
HRESULT CreateObject(REFIID iid, void** object, Arguments... arguments) {
    Class* const created = new (std::nothrow) Class(arguments...);
    if (!created)
        return E_OUTOFMEMORY;
    const HRESULT result = created->QueryInterface(iid, object);
    created->Release();
    return result;
}

} // namespace vantrel
