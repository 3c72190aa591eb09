#include "tools/preview/ThumbnailHost.h"

#include "tools/preview/FileStream.h"

#include <propsys.h>
#include <thumbcache.h>

namespace vantrel::tools {

using Microsoft::WRL::ComPtr;

void ThumbnailHost::Ask(const InputFile& file, std::vector<HandlerResult>& results) {
    for (const unsigned size : sizes_)
        Attempt(results, std::to_wstring(size), [&](HandlerResult& result) {
            const auto initialiser = Create<IInitializeWithStream>(file);
            Check(initialiser->Initialize(OpenStream(file).Get(), STGM_READ), L"Initialize");
            ComPtr<IThumbnailProvider> provider;
            Check(initialiser.As(&provider), L"IThumbnailProvider");

            HBITMAP bitmap = nullptr;
            WTS_ALPHATYPE alpha = WTSAT_UNKNOWN;
            Check(provider->GetThumbnail(size, &bitmap, &alpha), L"GetThumbnail");
            result.picture = TakePicture(bitmap);
            result.picture.isOpaque = alpha != WTSAT_ARGB;
            result.text = result.picture.Dimensions();
            result.pngSuffix = std::to_wstring(size);
        });
}

} // namespace vantrel::tools
