#include "tools/picture/PngWriter.h"

#include "tools/terminal/Console.h"
#include "tools/terminal/Failure.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iterator>
#include <span>
#include <string_view>

namespace vantrel::tools {

using Microsoft::WRL::ComPtr;

namespace {

// The signature and the IHDR chunk, which texts may follow.
constexpr std::uint64_t pngStart = 8 + 25;

std::uint32_t Crc32(std::string_view bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<std::uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

std::string BigEndian(std::uint32_t number) {
    return {static_cast<char>(number >> 24), static_cast<char>(number >> 16), static_cast<char>(number >> 8),
            static_cast<char>(number)};
}

// Plain text where possible, since more readers support it.
std::string TextChunk(const PngText& text) {
    const std::wstring visible = Visible(text.text);
    const bool isPlain = std::ranges::all_of(visible, [](wchar_t character) { return character < 0x7F; });
    std::string chunk = isPlain ? "tEXt" : "iTXt";
    chunk += text.keyword;
    chunk.append(isPlain ? 1 : 5, '\0'); // not compressed, no language, no translated keyword
    chunk += ToUtf8(visible);
    return BigEndian(static_cast<std::uint32_t>(chunk.size() - 4)) + chunk + BigEndian(Crc32(chunk));
}

} // namespace

// The stream that WIC writes to: inserts the texts after the header, which WIC can't do under Wine. Not
// destroyed by its last Release.
class PngWriter::Stream final : public IStream {
public:
    Stream(OutputFile& output, const std::vector<PngText>& texts) : output_(output) {
        for (const PngText& text : texts)
            texts_ += TextChunk(text);
    }

    void WriteTexts() {
        output_.Seek(pngStart);
        output_.Write(std::as_bytes(std::span(texts_)));
    }
    // From the last failed write; no exception may pass through WIC.
    std::exception_ptr Failed() const { return failed_; }

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const bool known =
            id == __uuidof(IUnknown) || id == __uuidof(ISequentialStream) || id == __uuidof(IStream);
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    STDMETHODIMP Write(const void* bytes, ULONG count, ULONG* written) override {
        if (written)
            *written = 0;
        try {
            for (auto rest = std::span(static_cast<const std::byte*>(bytes), count); !rest.empty();) {
                const bool isStart = position_ < pngStart;
                const auto part = rest.first(
                    isStart ? std::min<std::size_t>(rest.size(), pngStart - position_) : rest.size());
                output_.Seek(isStart ? position_ : position_ + texts_.size());
                output_.Write(part);
                position_ += part.size();
                rest = rest.subspan(part.size());
            }
        } catch (...) {
            failed_ = std::current_exception();
            return E_FAIL;
        }
        size_ = std::max(size_, position_);
        if (written)
            *written = count;
        return S_OK;
    }
    STDMETHODIMP Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER* position) override {
        const std::uint64_t base = origin == STREAM_SEEK_SET   ? 0
                                   : origin == STREAM_SEEK_CUR ? position_
                                                               : size_;
        position_ = base + static_cast<std::uint64_t>(distance.QuadPart);
        if (position)
            position->QuadPart = position_;
        return S_OK;
    }
    STDMETHODIMP Stat(STATSTG* facts, DWORD) override {
        *facts = {};
        facts->type = STGTY_STREAM;
        facts->cbSize.QuadPart = size_;
        facts->grfMode = STGM_WRITE;
        return S_OK;
    }
    STDMETHODIMP SetSize(ULARGE_INTEGER) override { return S_OK; }
    STDMETHODIMP Commit(DWORD) override { return S_OK; }
    STDMETHODIMP Read(void*, ULONG, ULONG*) override { return E_NOTIMPL; }
    STDMETHODIMP CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Revert() override { return E_NOTIMPL; }
    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Clone(IStream**) override { return E_NOTIMPL; }

private:
    OutputFile& output_;
    std::string texts_;
    std::uint64_t position_ = 0; // as WIC counts, not including the texts
    std::uint64_t size_ = 0;
    std::exception_ptr failed_;
};

PngWriter::PngWriter(OutputFile& output, unsigned width, unsigned height, bool isOpaque,
                     const std::vector<PngText>& texts)
    : width_(width), isOpaque_(isOpaque), stream_(std::make_unique<Stream>(output, texts)),
      row_(std::size_t{width} * (isOpaque ? 3 : 4)) {
    ComPtr<IWICImagingFactory> factory;
    Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                           IID_PPV_ARGS(factory.GetAddressOf())));
    Check(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder_.GetAddressOf()));
    Check(encoder_->Initialize(stream_.get(), WICBitmapEncoderNoCache));
    Check(encoder_->CreateNewFrame(frame_.GetAddressOf(), nullptr));
    Check(frame_->Initialize(nullptr));
    Check(frame_->SetSize(width, height));
    const WICPixelFormatGUID wanted = isOpaque ? GUID_WICPixelFormat24bppBGR : GUID_WICPixelFormat32bppBGRA;
    WICPixelFormatGUID format = wanted;
    Check(frame_->SetPixelFormat(&format));
    if (format != wanted)
        throw Failure(L"the PNG encoder does not take this pixel format");
}

PngWriter::~PngWriter() = default;

void PngWriter::WriteRow(const std::uint32_t* words) {
    BYTE* at = row_.data();
    for (const std::uint32_t word : std::span(words, width_)) {
        *at++ = static_cast<BYTE>(word);
        *at++ = static_cast<BYTE>(word >> 8);
        *at++ = static_cast<BYTE>(word >> 16);
        if (!isOpaque_)
            *at++ = static_cast<BYTE>(word >> 24);
    }
    const auto size = static_cast<UINT>(row_.size());
    Check(frame_->WritePixels(1, size, size, row_.data()));
}

void PngWriter::Finish() {
    Check(frame_->Commit());
    Check(encoder_->Commit());
    stream_->WriteTexts();
}

void PngWriter::Check(HRESULT result) const {
    if (stream_->Failed())
        std::rethrow_exception(stream_->Failed());
    tools::Check(result, L"the PNG encoder");
}

} // namespace vantrel::tools
