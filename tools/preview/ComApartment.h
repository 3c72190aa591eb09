// A thread's stay in a single-threaded COM apartment, as the Shell's own threads have it.
#pragma once

#include <objbase.h>

namespace vantrel::tools {

class ComApartment {
public:
    ComApartment() : entered_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
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
