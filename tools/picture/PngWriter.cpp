#include "tools/picture/PngWriter.h"

#include "tools/terminal/Console.h"
#include "tools/terminal/Failure.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <span>
#include <string_view>

namespace vantrel::tools {

namespace {

constexpr std::int64_t endChunkSize = 12;

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

// Its type is the first four bytes.
std::string Chunk(const std::string& typeAndData) {
    return BigEndian(static_cast<std::uint32_t>(typeAndData.size() - 4)) + typeAndData +
           BigEndian(Crc32(typeAndData));
}

// Plain text where possible, since more readers support it.
std::string TextChunk(const PngText& text) {
    const std::wstring visible = Visible(text.text);
    const bool isPlain = std::ranges::all_of(visible, [](wchar_t character) { return character < 0x7F; });
    std::string chunk = isPlain ? "tEXt" : "iTXt";
    chunk += text.keyword;
    chunk.append(isPlain ? 1 : 5, '\0'); // not compressed, no language, no translated keyword
    return Chunk(chunk + ToUtf8(visible));
}

} // namespace

// The output as WIC writes to it. Not destroyed by its last Release.
class PngWriter::Stream final : public IStream {
public:
    explicit Stream(OutputFile& output) : output_(output) {}

    // What the last failed call threw, since no exception may pass through WIC.
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
        return Try([&] {
            output_.Write({static_cast<const std::byte*>(bytes), count});
            if (written)
                *written = count;
        });
    }
    STDMETHODIMP Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER* position) override {
        return Try([&] {
            const std::uint64_t reached = output_.Seek(distance.QuadPart, origin);
            if (position)
                position->QuadPart = reached;
        });
    }
    STDMETHODIMP Stat(STATSTG* facts, DWORD) override {
        *facts = {};
        facts->type = STGTY_STREAM;
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
    template <class Work>
    HRESULT Try(const Work& work) {
        try {
            work();
            return S_OK;
        } catch (...) {
            failed_ = std::current_exception();
            return E_FAIL;
        }
    }

    OutputFile& output_;
    std::exception_ptr failed_;
};

PngWriter::PngWriter(OutputFile& output, unsigned width, unsigned height, bool isOpaque,
                     const std::vector<PngText>& texts)
    : output_(output), width_(width), isOpaque_(isOpaque), stream_(std::make_unique<Stream>(output)),
      row_(std::size_t{width} * (isOpaque ? 3 : 4)) {
    for (const PngText& text : texts)
        texts_ += TextChunk(text);
    Check(CreateWicFactory()->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder_.GetAddressOf()));
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
    // PNG allows texts anywhere in front of its end, and WIC under Wine can't write any.
    output_.Seek(-endChunkSize, FILE_END);
    texts_ += Chunk("IEND");
    output_.Write(std::as_bytes(std::span(texts_)));
}

void PngWriter::Check(HRESULT result) const {
    if (stream_->Failed())
        std::rethrow_exception(stream_->Failed());
    tools::Check(result, L"the PNG encoder");
}

} // namespace vantrel::tools
