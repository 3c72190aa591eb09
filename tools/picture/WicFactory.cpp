#include "tools/picture/WicFactory.h"

#include "tools/terminal/Failure.h"

namespace vantrel::tools {

ComPtr<IWICImagingFactory> CreateWicFactory() {
    ComPtr<IWICImagingFactory> factory;
    Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                           IID_PPV_ARGS(factory.GetAddressOf())),
          L"Windows Imaging Component");
    return factory;
}

} // namespace vantrel::tools
