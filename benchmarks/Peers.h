// What a user would choose instead: the platform's own ways from a BMP file to a small bitmap.
#pragma once

#include "support/Handles.h"

#include <objidl.h>
#include <wincodec.h>
#include <wrl/client.h>

namespace vantrel::bench {

// WIC's decoder, converter and Fant scaler, into a 32-bit bitmap.
class WicPeer {
public:
    WicPeer();

    UniqueBitmap Thumbnail(IStream& stream, unsigned edge) const;
    UniqueBitmap Thumbnail(const wchar_t* path, unsigned edge) const;

private:
    Microsoft::WRL::ComPtr<IWICImagingFactory> factory_;
};

// GDI+'s own thumbnail call.
class GdiPlusPeer {
public:
    GdiPlusPeer();
    ~GdiPlusPeer();
    GdiPlusPeer(const GdiPlusPeer&) = delete;
    GdiPlusPeer& operator=(const GdiPlusPeer&) = delete;

    UniqueBitmap Thumbnail(IStream& stream, unsigned edge) const;
    UniqueBitmap Thumbnail(const wchar_t* path, unsigned edge) const;

private:
    ULONG_PTR token_ = 0;
};

// LoadImage and a HALFTONE StretchBlt.
UniqueBitmap LoadImageThumbnail(const wchar_t* path, unsigned edge);

} // namespace vantrel::bench
