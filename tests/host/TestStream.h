// A stream in memory that counts its calls and references and can be made to misbehave.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <objidl.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

namespace vantrel::tests {

enum class StreamFault {
    None,
    Fails,        // with E_FAIL
    ReadsShort,   // one byte too few, with S_OK
    ReadsNothing, // from that call on, with S_OK
    ReadsTooMuch, // reports one byte more than was asked for
    Moves,        // reads correctly, then the position is somewhere else
    SaysFalse,    // does everything, with S_FALSE
};

// Not heap-allocated. Fails the running test if someone still holds it at its end.
class TestStream final : public IStream {
public:
    explicit TestStream(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}
    ~TestStream() { EXPECT_EQ(1u, references_) << "references to the stream"; }

    // The call with this number (Stat, Seek and Read counted together from 1) is faulty.
    void BreakAt(unsigned call, StreamFault fault) {
        calls_ = 0;
        hasLied_ = false;
        faultAt_ = call;
        fault_ = fault;
    }
    // No call may read more bytes, nor any of those from begin to end.
    void LimitReads(ULONG most, std::uint64_t begin = 0, std::uint64_t end = 0) {
        mostBytes_ = most;
        forbidden_ = {begin, end};
    }
    HRESULT refusal = S_OK; // from every QueryInterface
    std::optional<std::uint64_t> claimedSize;

    // Whether the fault had any effect: a Seek, for example, can't read short.
    bool HasLied() const { return hasLied_; }
    unsigned Calls() const { return calls_; }
    std::uint64_t BytesAsked() const { return bytesAsked_; }
    ULONG References() const { return references_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (FAILED(refusal))
            return refusal;
        if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, IID_ISequentialStream) &&
            !IsEqualIID(iid, IID_IStream))
            return E_NOINTERFACE;
        *object = static_cast<IStream*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override { return --references_; }

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* done) override {
        const StreamFault fault = NextFault();
        hasLied_ = hasLied_ || (fault != StreamFault::None && fault != StreamFault::Moves &&
                                fault != StreamFault::SaysFalse);
        if (count > mostBytes_ || (position_ < forbidden_.second && position_ + count > forbidden_.first))
            return E_ACCESSDENIED;
        ULONG served = 0;
        bytesAsked_ += count;
        if (fault != StreamFault::Fails && fault != StreamFault::ReadsNothing && position_ < bytes_.size()) {
            served = static_cast<ULONG>(std::min<std::uint64_t>(count, bytes_.size() - position_));
            if (fault == StreamFault::ReadsShort && served > 0)
                --served;
            std::memcpy(buffer, bytes_.data() + position_, served);
            position_ += served;
        }
        if (done)
            *done = fault == StreamFault::ReadsTooMuch ? count + 1 : served;
        if (fault == StreamFault::Moves)
            position_ += 7;
        return Finish(fault);
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER* reached) override {
        EXPECT_EQ(DWORD{STREAM_SEEK_SET}, origin);
        const StreamFault fault = NextFault();
        if (distance.QuadPart < 0)
            return STG_E_INVALIDFUNCTION;
        if (fault != StreamFault::Fails)
            position_ = static_cast<std::uint64_t>(distance.QuadPart);
        if (reached)
            reached->QuadPart = position_;
        return Finish(fault);
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* stat, DWORD flags) override {
        EXPECT_EQ(DWORD{STATFLAG_NONAME}, flags) << "a name would have to be freed";
        const StreamFault fault = NextFault();
        *stat = {};
        stat->type = STGTY_STREAM;
        stat->cbSize.QuadPart = claimedSize.value_or(bytes_.size());
        return Finish(fault);
    }

    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return STG_E_ACCESSDENIED; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return STG_E_ACCESSDENIED; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

private:
    StreamFault NextFault() {
        ++calls_;
        const bool due = fault_ == StreamFault::ReadsNothing ? calls_ >= faultAt_ : calls_ == faultAt_;
        return faultAt_ > 0 && due ? fault_ : StreamFault::None;
    }
    HRESULT Finish(StreamFault fault) {
        hasLied_ = hasLied_ || fault == StreamFault::Fails;
        return fault == StreamFault::Fails ? E_FAIL : fault == StreamFault::SaysFalse ? S_FALSE : S_OK;
    }

    std::vector<std::uint8_t> bytes_;
    std::uint64_t position_ = 3; // a host may pass a stream that is not at its start
    ULONG mostBytes_ = ~ULONG{0};
    std::pair<std::uint64_t, std::uint64_t> forbidden_{};
    std::uint64_t bytesAsked_ = 0;
    unsigned calls_ = 0;
    unsigned faultAt_ = 0;
    StreamFault fault_ = StreamFault::None;
    bool hasLied_ = false;
    std::atomic<ULONG> references_ = 1;
};

} // namespace vantrel::tests
