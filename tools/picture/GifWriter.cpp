#include "tools/picture/GifWriter.h"

#include "support/Handles.h"
#include "tools/picture/Rgb565.h"
#include "tools/picture/WicFactory.h"
#include "tools/terminal/Failure.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace vantrel::tools {

using namespace std::string_view_literals;

namespace {

constexpr auto signature = "GIF89a"sv;
constexpr std::size_t screenSize = signature.size(); // offset of the logical screen's width and height
constexpr auto logicalScreen = "\0\0\0\0\x70\0\0"sv; // its size, then: 8 bits a channel, no colour table
constexpr auto loopForever = "!\xFF\x0BNETSCAPE2.0\x03\x01\0\0\0"sv;
constexpr auto graphicControl = "!\xF9\x04"sv;
constexpr auto trailer = ";"sv;
constexpr char extensionBlock = 0x21;
constexpr char imageDescriptor = 0x2C;
constexpr std::size_t imageDescriptorSize = 10;
constexpr unsigned colorTableFlag = 0x80; // the flags' lowest three bits say how large the table is

void Put(OutputFile& output, std::string_view bytes) {
    output.Write(std::as_bytes(std::span(bytes)));
}

std::string Number(unsigned value) {
    return {static_cast<char>(value), static_cast<char>(value >> 8)};
}

void CheckEncoder(HRESULT result) {
    Check(result, L"the GIF encoder");
}

// A GIF file of this one frame.
ComPtr<IStream> Encode(std::uint16_t width, std::uint16_t height, std::span<std::uint8_t> indices) {
    const ComPtr<IWICImagingFactory> factory = CreateWicFactory();
    ComPtr<IStream> stream;
    CheckEncoder(CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf()));
    ComPtr<IWICBitmapEncoder> encoder;
    CheckEncoder(factory->CreateEncoder(GUID_ContainerFormatGif, nullptr, encoder.GetAddressOf()));
    CheckEncoder(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache));
    ComPtr<IWICBitmapFrameEncode> frame;
    CheckEncoder(encoder->CreateNewFrame(frame.GetAddressOf(), nullptr));
    CheckEncoder(frame->Initialize(nullptr));
    CheckEncoder(frame->SetSize(width, height));
    WICPixelFormatGUID format = GUID_WICPixelFormat8bppIndexed;
    CheckEncoder(frame->SetPixelFormat(&format));
    // 256 different colours, later replaced by the real table.
    std::array<WICColor, 256> greys;
    for (std::uint32_t i = 0; i < greys.size(); ++i)
        greys[i] = 0xFF000000 | i * 0x010101;
    ComPtr<IWICPalette> palette;
    CheckEncoder(factory->CreatePalette(palette.GetAddressOf()));
    CheckEncoder(palette->InitializeCustom(greys.data(), static_cast<UINT>(greys.size())));
    CheckEncoder(frame->SetPalette(palette.Get()));
    CheckEncoder(frame->WritePixels(height, width, static_cast<UINT>(indices.size()), indices.data()));
    CheckEncoder(frame->Commit());
    CheckEncoder(encoder->Commit());
    return stream;
}

// The compressed pixels of a GIF file's first frame, from the code size to the end of their blocks; empty
// when there is none.
std::string_view CompressedPixels(std::string_view file) {
    std::size_t at = 13; // behind the header and the logical screen
    const auto byte = [&](std::size_t offset) -> unsigned {
        return offset < file.size() ? static_cast<std::uint8_t>(file[offset]) : 0;
    };
    const auto skipColorTable = [&](unsigned flags) {
        if (flags & colorTableFlag)
            at += 3 * (std::size_t{2} << (flags & 7));
    };
    const auto skipBlocks = [&] {
        while (byte(at) != 0)
            at += 1U + byte(at);
        ++at;
    };
    constexpr std::size_t screenFlags = 10;
    skipColorTable(byte(screenFlags));
    while (byte(at) == extensionBlock) {
        at += 2;
        skipBlocks();
    }
    if (byte(at) != imageDescriptor)
        return {};
    at += imageDescriptorSize;
    skipColorTable(byte(at - 1));
    const std::size_t begin = at++;
    skipBlocks();
    return at <= file.size() ? file.substr(begin, at - begin) : std::string_view();
}

} // namespace

GifWriter::GifWriter(OutputFile& output, unsigned delayMilliseconds)
    : output_(output), delay_((delayMilliseconds + 5) / 10) {
    // The screen's size is filled in once it is known.
    for (const std::string_view part : {signature, logicalScreen, loopForever})
        Put(output_, part);
}

void GifWriter::AddFrame(std::uint16_t width, std::uint16_t height, std::span<std::uint8_t> indices,
                         const Palette& palette, std::optional<std::uint8_t> transparentIndex) {
    width_ = std::max(width_, width);
    height_ = std::max(height_, height);
    constexpr char restoreToBackground = 2 << 2;
    std::string head(graphicControl);
    head += static_cast<char>(restoreToBackground | transparentIndex.has_value());
    head += Number(delay_);
    head += static_cast<char>(transparentIndex.value_or(0));
    head += '\0';
    head += imageDescriptor;
    head += Number(0) + Number(0) + Number(width) + Number(height);
    head += static_cast<char>(colorTableFlag | 7);
    for (const std::uint16_t color : palette.colors) {
        const Color shown = FromRgb565(color);
        head += {static_cast<char>(shown.red), static_cast<char>(shown.green), static_cast<char>(shown.blue)};
    }

    const ComPtr<IStream> stream = Encode(width, height, indices);
    HGLOBAL memory = nullptr;
    CheckEncoder(GetHGlobalFromStream(stream.Get(), &memory));
    const auto* const bytes = static_cast<const char*>(GlobalLock(memory));
    const UniqueHandle<HGLOBAL, GlobalUnlock> lock(memory);
    const std::string_view pixels = CompressedPixels({bytes, GlobalSize(memory)});
    if (pixels.empty())
        throw Failure(L"the GIF encoder made no frame");
    Put(output_, head);
    Put(output_, pixels);
}

void GifWriter::Finish() {
    Put(output_, trailer);
    output_.Seek(screenSize, FILE_BEGIN);
    Put(output_, Number(width_) + Number(height_));
}

} // namespace vantrel::tools
