// The owner of one reference to a COM object, for all tools.
#pragma once

#include <utility>

namespace vantrel::tools {

template <class Interface>
class ComPtr {
public:
    ComPtr() = default;
    ComPtr(const ComPtr& other) : pointer_(other.pointer_) {
        if (pointer_)
            pointer_->AddRef();
    }
    ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~ComPtr() {
        if (pointer_)
            pointer_->Release();
    }

    // Where a function may store a new reference; the old one is released first.
    Interface** Put() {
        *this = ComPtr();
        return &pointer_;
    }
    void** PutVoid() { return reinterpret_cast<void**>(Put()); }

    Interface* Get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }

private:
    Interface* pointer_ = nullptr;
};

} // namespace vantrel::tools
