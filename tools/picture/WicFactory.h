// The Windows Imaging Component, which reads and writes all picture files but ZMI.
#pragma once

#include <windows.h>

#include <wincodec.h>
#include <wrl/client.h>

namespace vantrel::tools {

using Microsoft::WRL::ComPtr;

// COM must be initialised on the thread. Throws Failure.
ComPtr<IWICImagingFactory> CreateWicFactory();

} // namespace vantrel::tools
