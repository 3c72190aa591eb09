#include "tools/preview/PngFile.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/OutputFile.h"

#include <wincodec.h>
#include <wrl/client.h>

#include <span>

namespace vantrel::tools {

using Microsoft::WRL::ComPtr;

namespace {

// The whole file, made in memory: what reaches the disk is then written by OutputFile alone.
ComPtr<IStream> Encode(unsigned width, unsigned height, bool isOpaque,
                       std::span<const std::uint32_t> pixels) {
    ComPtr<IWICImagingFactory> factory;
    Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                           IID_PPV_ARGS(factory.GetAddressOf())),
          L"WIC");
    ComPtr<IStream> stream;
    Check(CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf()), L"memory stream");
    ComPtr<IWICBitmapEncoder> encoder;
    Check(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.GetAddressOf()), L"PNG encoder");
    Check(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache), L"PNG encoder");
    ComPtr<IWICBitmapFrameEncode> frame;
    Check(encoder->CreateNewFrame(frame.GetAddressOf(), nullptr), L"PNG frame");
    Check(frame->Initialize(nullptr), L"PNG frame");
    Check(frame->SetSize(width, height), L"PNG size");
    WICPixelFormatGUID format = isOpaque ? GUID_WICPixelFormat24bppBGR : GUID_WICPixelFormat32bppBGRA;
    const WICPixelFormatGUID wanted = format;
    Check(frame->SetPixelFormat(&format), L"PNG pixel format");
    if (format != wanted)
        throw Failure(L"the PNG encoder does not take this pixel format");

    const unsigned pixelBytes = isOpaque ? 3 : 4;
    std::vector<BYTE> row(std::size_t{width} * pixelBytes);
    for (; !pixels.empty(); pixels = pixels.subspan(width)) {
        for (std::size_t x = 0; x < width; ++x)
            for (unsigned byte = 0; byte < pixelBytes; ++byte)
                row[x * pixelBytes + byte] = static_cast<BYTE>(pixels[x] >> (8 * byte));
        Check(frame->WritePixels(1, static_cast<UINT>(row.size()), static_cast<UINT>(row.size()), row.data()),
              L"PNG pixels");
    }
    Check(frame->Commit(), L"PNG frame");
    Check(encoder->Commit(), L"PNG file");
    return stream;
}

} // namespace

void WritePng(const std::filesystem::path& file, const OutputGuard& guard, unsigned width, unsigned height,
              bool isOpaque, const std::uint32_t* pixels) {
    OutputFile output(file, FileKind::Png, guard);
    const auto stream = Encode(width, height, isOpaque, {pixels, std::size_t{width} * height});
    STATSTG facts{};
    HGLOBAL memory = nullptr;
    Check(stream->Stat(&facts, STATFLAG_NONAME), L"memory stream");
    Check(GetHGlobalFromStream(stream.Get(), &memory), L"memory stream");
    const auto* bytes = static_cast<const std::byte*>(GlobalLock(memory));
    const UniqueHandle<HGLOBAL, GlobalUnlock> unlock(memory);
    output.Write({bytes, static_cast<std::size_t>(facts.cbSize.QuadPart)});
    output.Commit();
}

} // namespace vantrel::tools
