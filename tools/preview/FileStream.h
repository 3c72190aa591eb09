// The stream over a file that the Shell hands to its handlers.
#pragma once

#include "tools/preview/InputFile.h"
#include "tools/terminal/Failure.h"

#include <objidl.h>
#include <shlwapi.h>
#include <wrl/client.h>

namespace vantrel::tools {

// Throws Failure when the file can't be opened.
inline Microsoft::WRL::ComPtr<IStream> OpenStream(const InputFile& file) {
    Microsoft::WRL::ComPtr<IStream> stream;
    Check(SHCreateStreamOnFileEx(file.path.c_str(), STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr,
                                 stream.GetAddressOf()),
          L"opening the file");
    return stream;
}

} // namespace vantrel::tools
