#include "benchmarks/Peers.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>
#include <string>

// Some SDKs' GDI+ headers call min and max, which NOMINMAX leaves undefined.
namespace Gdiplus {
using std::max;
using std::min;
} // namespace Gdiplus
#include <gdiplus.h>

namespace vantrel::bench {

namespace {

using Microsoft::WRL::ComPtr;

void Require(bool succeeded, const char* what) {
    if (!succeeded)
        throw std::runtime_error(std::string(what) + " failed");
}

struct Size {
    UINT width, height;
};

Size Fit(UINT width, UINT height, UINT edge) {
    const double scale = std::min(static_cast<double>(edge) / width, static_cast<double>(edge) / height);
    return {static_cast<UINT>(scale * width), static_cast<UINT>(scale * height)};
}

UniqueBitmap MakeDib(Size size, void*& bits) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = static_cast<LONG>(size.width);
    info.bmiHeader.biHeight = -static_cast<LONG>(size.height);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    UniqueBitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    Require(bitmap != nullptr, "CreateDIBSection");
    return bitmap;
}

UniqueBitmap ScaleWithWic(IWICImagingFactory& factory, IWICBitmapDecoder& decoder, unsigned edge) {
    ComPtr<IWICBitmapFrameDecode> frame;
    Require(decoder.GetFrame(0, frame.GetAddressOf()) == S_OK, "GetFrame");
    UINT width;
    UINT height;
    frame->GetSize(&width, &height);
    const Size size = Fit(width, height, edge);
    ComPtr<IWICFormatConverter> converter;
    Require(factory.CreateFormatConverter(converter.GetAddressOf()) == S_OK, "CreateFormatConverter");
    Require(converter->Initialize(frame.Get(), GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone, nullptr,
                                  0, WICBitmapPaletteTypeCustom) == S_OK,
            "IWICFormatConverter");
    ComPtr<IWICBitmapScaler> scaler;
    Require(factory.CreateBitmapScaler(scaler.GetAddressOf()) == S_OK, "CreateBitmapScaler");
    Require(scaler->Initialize(converter.Get(), size.width, size.height, WICBitmapInterpolationModeFant) ==
                S_OK,
            "IWICBitmapScaler");
    void* bits;
    UniqueBitmap result = MakeDib(size, bits);
    Require(scaler->CopyPixels(nullptr, size.width * 4, size.width * size.height * 4,
                               static_cast<BYTE*>(bits)) == S_OK,
            "CopyPixels");
    return result;
}

UniqueBitmap ScaleWithGdiPlus(Gdiplus::GpBitmap* bitmap, unsigned edge) {
    using namespace Gdiplus::DllExports;
    UINT width;
    UINT height;
    GdipGetImageWidth(bitmap, &width);
    GdipGetImageHeight(bitmap, &height);
    const Size size = Fit(width, height, edge);
    Gdiplus::GpImage* thumbnail = nullptr;
    Require(GdipGetImageThumbnail(bitmap, size.width, size.height, &thumbnail, nullptr, nullptr) ==
                Gdiplus::Ok,
            "GdipGetImageThumbnail");
    HBITMAP result = nullptr;
    GdipCreateHBITMAPFromBitmap(static_cast<Gdiplus::GpBitmap*>(thumbnail), &result, 0xFF000000);
    GdipDisposeImage(thumbnail);
    GdipDisposeImage(bitmap);
    Require(result != nullptr, "GdipCreateHBITMAPFromBitmap");
    return UniqueBitmap(result);
}

} // namespace

WicPeer::WicPeer() {
    Require(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                             IID_PPV_ARGS(factory_.GetAddressOf())) == S_OK,
            "CoCreateInstance");
}

UniqueBitmap WicPeer::Thumbnail(IStream& stream, unsigned edge) const {
    stream.Seek({}, STREAM_SEEK_SET, nullptr);
    ComPtr<IWICBitmapDecoder> decoder;
    Require(factory_->CreateDecoderFromStream(&stream, nullptr, WICDecodeMetadataCacheOnDemand,
                                              decoder.GetAddressOf()) == S_OK,
            "CreateDecoderFromStream");
    return ScaleWithWic(*factory_.Get(), *decoder.Get(), edge);
}

UniqueBitmap WicPeer::Thumbnail(const wchar_t* path, unsigned edge) const {
    ComPtr<IWICBitmapDecoder> decoder;
    Require(factory_->CreateDecoderFromFilename(path, nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand,
                                                decoder.GetAddressOf()) == S_OK,
            "CreateDecoderFromFilename");
    return ScaleWithWic(*factory_.Get(), *decoder.Get(), edge);
}

GdiPlusPeer::GdiPlusPeer() {
    const Gdiplus::GdiplusStartupInput input;
    Require(Gdiplus::GdiplusStartup(&token_, &input, nullptr) == Gdiplus::Ok, "GdiplusStartup");
}

GdiPlusPeer::~GdiPlusPeer() {
    Gdiplus::GdiplusShutdown(token_);
}

UniqueBitmap GdiPlusPeer::Thumbnail(IStream& stream, unsigned edge) const {
    stream.Seek({}, STREAM_SEEK_SET, nullptr);
    Gdiplus::GpBitmap* bitmap = nullptr;
    Require(Gdiplus::DllExports::GdipCreateBitmapFromStream(&stream, &bitmap) == Gdiplus::Ok,
            "GdipCreateBitmapFromStream");
    return ScaleWithGdiPlus(bitmap, edge);
}

UniqueBitmap GdiPlusPeer::Thumbnail(const wchar_t* path, unsigned edge) const {
    Gdiplus::GpBitmap* bitmap = nullptr;
    Require(Gdiplus::DllExports::GdipCreateBitmapFromFile(path, &bitmap) == Gdiplus::Ok,
            "GdipCreateBitmapFromFile");
    return ScaleWithGdiPlus(bitmap, edge);
}

UniqueBitmap LoadImageThumbnail(const wchar_t* path, unsigned edge) {
    const UniqueBitmap natural(static_cast<HBITMAP>(
        LoadImageW(nullptr, path, IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION)));
    BITMAP info;
    Require(natural && GetObjectW(natural.get(), sizeof info, &info) != 0, "LoadImage");
    const Size size = Fit(static_cast<UINT>(info.bmWidth), static_cast<UINT>(info.bmHeight), edge);
    void* bits;
    UniqueBitmap result = MakeDib(size, bits);
    const UniqueDc sourceDc(CreateCompatibleDC(nullptr));
    const UniqueDc targetDc(CreateCompatibleDC(nullptr));
    const HGDIOBJ sourceBefore = SelectObject(sourceDc.get(), natural.get());
    const HGDIOBJ targetBefore = SelectObject(targetDc.get(), result.get());
    SetStretchBltMode(targetDc.get(), HALFTONE);
    Require(StretchBlt(targetDc.get(), 0, 0, static_cast<int>(size.width), static_cast<int>(size.height),
                       sourceDc.get(), 0, 0, info.bmWidth, info.bmHeight, SRCCOPY),
            "StretchBlt");
    GdiFlush();
    SelectObject(sourceDc.get(), sourceBefore);
    SelectObject(targetDc.get(), targetBefore);
    return result;
}

} // namespace vantrel::bench
