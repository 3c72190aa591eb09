#include "tools/pack/PictureReader.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/LongPath.h"

#include <limits>
#include <utility>

namespace vantrel::tools {

constexpr unsigned largestSide = std::numeric_limits<std::uint16_t>::max();

ComPtr<IWICImagingFactory> CreateWicFactory() {
    ComPtr<IWICImagingFactory> factory;
    Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                           IID_PPV_ARGS(factory.GetAddressOf())),
          L"Windows Imaging Component");
    return factory;
}

PictureFrame::PictureFrame(ComPtr<IWICBitmapSource> source, std::wstring name)
    : source_(std::move(source)), name_(std::move(name)) {
    UINT width = 0;
    UINT height = 0;
    Check(source_->GetSize(&width, &height), name_);
    if (width == 0 || height == 0 || width > largestSide || height > largestSide)
        throw Failure(name_ + L": " + std::to_wstring(width) + L" x " + std::to_wstring(height) +
                      L" pixels; a ZMI frame has from 1 to 65535 each way");
    width_ = static_cast<std::uint16_t>(width);
    height_ = static_cast<std::uint16_t>(height);
}

void PictureFrame::ReadRows(unsigned firstRow, std::span<Color> rows) const {
    const std::size_t count = rows.size() / width_;
    const WICRect area = {0, static_cast<INT>(firstRow), width_, static_cast<INT>(count)};
    Check(source_->CopyPixels(&area, static_cast<UINT>(width_ * sizeof(Color)),
                              static_cast<UINT>(rows.size_bytes()), reinterpret_cast<BYTE*>(rows.data())),
          name_);
}

PictureReader::PictureReader(ComPtr<IWICImagingFactory> factory, const std::filesystem::path& path)
    : factory_(std::move(factory)), name_(path.wstring()) {
    const std::filesystem::path file = LongPath(path);
    const DWORD attributes = GetFileAttributesW(file.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        throw Failure(name_ + L": this is a folder, not a picture");
    Check(factory_->CreateDecoderFromFilename(file.c_str(), nullptr, GENERIC_READ,
                                              WICDecodeMetadataCacheOnDemand, decoder_.GetAddressOf()),
          name_);
    Check(decoder_->GetFrameCount(&frameCount_), name_);
    if (frameCount_ == 0)
        throw Failure(name_ + L": the picture has no frame");
}

PictureFrame PictureReader::Frame(unsigned index) const {
    ComPtr<IWICBitmapFrameDecode> frame;
    Check(decoder_->GetFrame(index, frame.GetAddressOf()), name_);
    ComPtr<IWICBitmapSource> source;
    Check(WICConvertBitmapSource(GUID_WICPixelFormat32bppBGRA, frame.Get(), source.GetAddressOf()), name_);
    return {std::move(source), frameCount_ == 1 ? name_ : name_ + L", frame " + std::to_wstring(index + 1)};
}

} // namespace vantrel::tools
