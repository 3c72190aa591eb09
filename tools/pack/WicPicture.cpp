#include "tools/pack/WicPicture.h"

#include "tools/terminal/CommandLine.h"
#include "tools/terminal/LongPath.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vantrel::tools {

namespace {

void CheckRead(HRESULT result, const std::wstring& name) {
    // Wine's decoders return a plain E_FAIL where those of Windows report a bad image.
    Check(result == E_FAIL ? WINCODEC_ERR_BADIMAGE : result, name + L": cannot be read");
}

// From a decoder or a frame.
template <class Described>
unsigned MetadataNumber(Described& described, const wchar_t* query) {
    ComPtr<IWICMetadataQueryReader> reader;
    PROPVARIANT value;
    PropVariantInit(&value);
    if (FAILED(described.GetMetadataQueryReader(reader.GetAddressOf())) ||
        FAILED(reader->GetMetadataByName(query, &value)))
        return 0;
    const unsigned number = value.vt == VT_UI1 ? value.bVal : value.vt == VT_UI2 ? value.uiVal : 0U;
    PropVariantClear(&value);
    return number;
}

} // namespace

WicFrame::WicFrame(IWICImagingFactory& factory, ComPtr<IWICBitmapFrameDecode> frame, std::wstring name)
    : frame_(std::move(frame)), name_(std::move(name)) {
    CheckRead(frame_->GetSize(&width_, &height_), name_);
    // Not WICConvertBitmapSource, which would be the only import from WIC and load it at startup.
    ComPtr<IWICFormatConverter> converter;
    CheckRead(factory.CreateFormatConverter(converter.GetAddressOf()), name_);
    CheckRead(converter->Initialize(frame_.Get(), GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                                    nullptr, 0, WICBitmapPaletteTypeCustom),
              name_);
    CheckRead(converter.As(&source_), name_);
}

unsigned WicFrame::Number(const wchar_t* query) const {
    return MetadataNumber(*frame_.Get(), query);
}

void WicFrame::CopyPixels(const WICRect& area, std::span<Color> pixels) const {
    CheckRead(source_->CopyPixels(&area, static_cast<UINT>(area.Width) * UINT{sizeof(Color)},
                                  static_cast<UINT>(pixels.size_bytes()),
                                  reinterpret_cast<BYTE*>(pixels.data())),
              name_);
}

WicPicture::WicPicture(ComPtr<IWICImagingFactory> factory, const std::filesystem::path& path)
    : factory_(std::move(factory)), name_(path.wstring()) {
    CheckRead(factory_->CreateDecoderFromFilename(LongPath(path).c_str(), nullptr, GENERIC_READ,
                                                  WICDecodeMetadataCacheOnDemand, decoder_.GetAddressOf()),
              name_);
    CheckRead(decoder_->GetFrameCount(&frameCount_), name_);
    if (frameCount_ == 0)
        throw Failure(name_ + L": cannot be read: the picture has no frame");
}

bool WicPicture::Is(const GUID& containerFormat) const {
    GUID format{};
    return SUCCEEDED(decoder_->GetContainerFormat(&format)) && format == containerFormat;
}

unsigned WicPicture::Number(const wchar_t* query) const {
    return MetadataNumber(*decoder_.Get(), query);
}

WicFrame WicPicture::Frame(unsigned index) const {
    const std::wstring name = frameCount_ == 1 ? name_ : name_ + L", frame " + std::to_wstring(index + 1);
    ComPtr<IWICBitmapFrameDecode> frame;
    CheckRead(decoder_->GetFrame(index, frame.GetAddressOf()), name);
    return {*factory_.Get(), std::move(frame), name};
}

std::set<std::wstring, NameOrder> DecodableExtensions(IWICImagingFactory& factory) {
    std::set<std::wstring, NameOrder> all;
    ComPtr<IEnumUnknown> decoders;
    if (FAILED(factory.CreateComponentEnumerator(WICDecoder, WICComponentEnumerateDefault,
                                                 decoders.ReleaseAndGetAddressOf())))
        return all;
    for (ComPtr<IUnknown> decoder; decoders->Next(1, decoder.ReleaseAndGetAddressOf(), nullptr) == S_OK;) {
        ComPtr<IWICBitmapCodecInfo> codec;
        UINT size = 0;
        if (FAILED(decoder.As(&codec)) || FAILED(codec->GetFileExtensions(0, nullptr, &size)) || size == 0)
            continue;
        std::wstring extensions(size, L'\0');
        if (FAILED(codec->GetFileExtensions(size, extensions.data(), &size)))
            continue;
        extensions.resize(size - 1);
        std::ranges::replace(extensions, L';', L','); // as Wine separates them
        std::ranges::move(SplitList(extensions), std::inserter(all, all.end()));
    }
    all.erase(L"");
    return all;
}

} // namespace vantrel::tools
