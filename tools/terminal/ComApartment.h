// Initialises COM on a thread for the duration of a scope.
#pragma once

#include <objbase.h>

namespace vantrel::tools {

class ComApartment {
public:
    explicit ComApartment(COINIT kind)
        : entered_(SUCCEEDED(CoInitializeEx(nullptr, static_cast<DWORD>(kind)))) {}
    ~ComApartment() {
        if (entered_)
            CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

private:
    bool entered_;
};

} // namespace vantrel::tools
