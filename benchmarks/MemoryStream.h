// A read-only stream over bytes in memory that counts what is read from it.
#pragma once

#include "tests/builder/ZmiBuilder.h"

#include <windows.h>

#include <objidl.h>

#include <algorithm>
#include <cstring>

namespace vantrel::bench {

using tests::Bytes;

// Not heap-allocated: must outlive every reference to it, and the bytes must outlive the stream.
class MemoryStream final : public IStream {
public:
    explicit MemoryStream(const Bytes& bytes) : bytes_(bytes) {}

    std::uint64_t BytesRead() const { return bytesRead_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid != IID_IUnknown && iid != IID_ISequentialStream && iid != IID_IStream) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IStream*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* done) override {
        const std::size_t left = bytes_.size() - std::min(position_, bytes_.size());
        const std::size_t length = std::min<std::size_t>(count, left);
        std::memcpy(buffer, bytes_.data() + position_, length);
        position_ += length;
        bytesRead_ += length;
        if (done)
            *done = static_cast<ULONG>(length);
        return length == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER* position) override {
        const std::size_t base = origin == STREAM_SEEK_SET   ? 0
                                 : origin == STREAM_SEEK_CUR ? position_
                                                             : bytes_.size();
        position_ = base + static_cast<std::size_t>(distance.QuadPart);
        if (position)
            position->QuadPart = position_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* stat, DWORD) override {
        *stat = {};
        stat->type = STGTY_STREAM;
        stat->cbSize.QuadPart = bytes_.size();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return STG_E_ACCESSDENIED; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

private:
    const Bytes& bytes_;
    std::size_t position_ = 0;
    std::uint64_t bytesRead_ = 0;
};

} // namespace vantrel::bench
