// A byte source in memory that counts reads and can fail at a chosen call, and the result of loading from a
// source.
#pragma once

#include "codec/Decode.h"
#include "tests/builder/ZmiVerdict.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vantrel::tests {

class MemorySource final : public ByteSource {
public:
    explicit MemorySource(Bytes bytes) : bytes_(std::move(bytes)), reads_(bytes_.size()) {}

    // Calls count from 1, Size among them. A failing read fills half of the buffer.
    std::size_t failingCall = 0;

    std::uint64_t Size() override { return Fails() ? 0 : bytes_.size(); }

    bool ReadAt(std::int64_t offset, void* buffer, std::uint32_t count) override {
        const bool fails = Fails();
        ranges_.emplace_back(offset, count);
        if (offset < 0 || static_cast<std::uint64_t>(offset) > bytes_.size())
            return false;
        const auto begin = static_cast<std::size_t>(offset);
        const std::size_t done = std::min<std::size_t>(fails ? count / 2 : count, bytes_.size() - begin);
        std::copy_n(bytes_.data() + begin, done, static_cast<std::uint8_t*>(buffer));
        for (std::size_t i = 0; i < done; ++i)
            ++reads_[begin + i];
        return !fails && done == count;
    }

    std::size_t Calls() const { return calls_; }
    // The number of times each byte was read; wraps at 256.
    const Bytes& Reads() const { return reads_; }
    // Offset and count of each read.
    const std::vector<std::pair<std::int64_t, std::uint32_t>>& Ranges() const { return ranges_; }

private:
    bool Fails() { return ++calls_ == failingCall; }

    Bytes bytes_;
    Bytes reads_;
    std::vector<std::pair<std::int64_t, std::uint32_t>> ranges_;
    std::size_t calls_ = 0;
};

// Stores the loaded image in *image if given.
template <class Source>
Verdict VerdictOf(Source&& source, Keep keep = Keep::Facts,
                  std::uint32_t windowSize = PayloadReader::standardWindow, DecodedImage* image = nullptr) {
    DecodedImage own;
    try {
        return DecodeFile(source, image ? *image : own, keep, {}, windowSize) ? Verdict::Loads
                                                                              : Verdict::Fails;
    } catch (const std::out_of_range&) {
        return Verdict::Throws;
    }
}

} // namespace vantrel::tests
