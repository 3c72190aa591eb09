#include "tools/preview/IconHost.h"

#include <shlobj.h>

#include <array>

namespace vantrel::tools {

using Microsoft::WRL::ComPtr;

namespace {

void CheckLocation(IExtractIconW& extractor) {
    std::array<wchar_t, MAX_PATH> iconFile{};
    int index = 0;
    UINT flags = 0;
    Check(extractor.GetIconLocation(GIL_FORSHELL, iconFile.data(), static_cast<UINT>(iconFile.size()), &index,
                                    &flags),
          L"GetIconLocation");
    if ((flags & GIL_NOTFILENAME) == 0)
        throw Failure(L"the handler names the icon file " + std::wstring(iconFile.data()) +
                      L" instead of drawing the picture");
}

} // namespace

void IconHost::Ask(const InputFile& file, std::vector<HandlerResult>& results) {
    HICON largeIcon = nullptr;
    HICON smallIcon = nullptr;
    const auto extract = [&](HandlerResult&) {
        const auto extractor = Create<IExtractIconW>(file);
        ComPtr<IPersistFile> persist;
        Check(extractor.As(&persist), L"IPersistFile");
        Check(persist->Load(file.path.c_str(), STGM_READ), L"Load");
        CheckLocation(*extractor.Get());
        Check(extractor->Extract(L"", 0, &largeIcon, &smallIcon, MAKELONG(largeEdge, smallEdge)), L"Extract");
    };
    // One request makes both icons; when it fails, the large one may be there all the same.
    std::vector<HandlerResult> both;
    Attempt(both, L"", extract);
    const auto take = [&](WORD edge, HICON icon) {
        Attempt(results, std::to_wstring(edge), [&](HandlerResult& result) {
            if (!icon)
                throw Failure(both.front().ok ? L"Extract gave no icon" : both.front().text,
                              both.front().ok ? E_FAIL : both.front().code);
            result.picture = TakePicture(icon);
            result.text = result.picture.Dimensions() + L", with alpha";
            result.pngSuffix = L"icon-" + std::to_wstring(edge);
        });
    };
    take(largeEdge, largeIcon);
    take(smallEdge, smallIcon);
}

} // namespace vantrel::tools
