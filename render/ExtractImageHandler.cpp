#include "render/ExtractImageHandler.h"

#include "render/RenderImage.h"
#include "support/Boundary.h"
#include "support/FileObject.h"

namespace vantrel {

HRESULT ExtractImageHandler::Load(LPCOLESTR fileName, DWORD mode) noexcept {
    requestedWidth_ = 0;
    requestedHeight_ = 0;
    return PersistedPath::Load(fileName, mode);
}

HRESULT ExtractImageHandler::GetLocation(LPWSTR, DWORD, DWORD*, const SIZE* size, DWORD,
                                         DWORD* flags) noexcept {
    if (!size || !flags)
        return E_POINTER;
    const bool asynchronous = (*flags & IEIFLAG_ASYNC) != 0;
    *flags |= IEIFLAG_REFRESH;
    requestedWidth_ = size->cx;
    requestedHeight_ = size->cy;
    return asynchronous ? E_PENDING : S_OK;
}

HRESULT ExtractImageHandler::Extract(HBITMAP* bitmap) noexcept {
    if (!bitmap)
        return E_POINTER;
    return GuardBoundary(E_FAIL, [&] {
        const bool square = requestedWidth_ == requestedHeight_;
        return RenderImage({.path = Path(),
                            .bitmap = bitmap,
                            .width = static_cast<std::uint32_t>(requestedWidth_),
                            .height = static_cast<std::uint32_t>(requestedHeight_),
                            .fitMode = square ? FitMode::Fitted : FitMode::Letterbox})
                   ? S_OK
                   : E_FAIL;
    });
}

HRESULT ExtractImageHandler::GetDateStamp(FILETIME* dateStamp) noexcept {
    FileObject file;
    if (!file.open(Path(), 0, 0, FILE_SHARE_READ | FILE_SHARE_WRITE))
        return E_FAIL;
    BY_HANDLE_FILE_INFORMATION information;
    if (dateStamp && GetFileInformationByHandle(file.handle(), &information))
        *dateStamp = information.ftLastWriteTime;
    return S_OK;
}

} // namespace vantrel
