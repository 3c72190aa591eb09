// The Windows Imaging Component, which reads and writes all picture files but ZMI.
#pragma once

#include "tools/terminal/Failure.h"

#include <windows.h>

#include <wincodec.h>
#include <wrl/client.h>

namespace vantrel::tools {

using Microsoft::WRL::ComPtr;

// COM must be initialised on the thread. Throws Failure.
inline ComPtr<IWICImagingFactory> CreateWicFactory() {
    ComPtr<IWICImagingFactory> factory;
    Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                           IID_PPV_ARGS(factory.GetAddressOf())),
          L"Windows Imaging Component");
    return factory;
}

} // namespace vantrel::tools
