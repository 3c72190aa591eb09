#include "codec/ReadFile.h"

#include "tests/builder/MemorySource.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vantrel::tests {

namespace {

const ZmiBuilder plain{.frames = {{5, 3}}};

// A virtual file: only its header and trailer exist, with zeros in between, and nothing but the header
// precedes the payload.
class SparseSource final : public ByteSource {
public:
    // Wherever the trailer really is.
    SparseSource(std::uint32_t dataOffset, std::uint32_t dataSize, std::int64_t trailerAt)
        : head_(plain.Build()), size_(std::uint64_t{dataOffset} + dataSize + 4), trailerAt_(trailerAt) {
        SetField(head_, 0, file_header::dataOffset, dataOffset);
        SetField(head_, 0, file_header::dataSize, dataSize);
    }
    unsigned calls = 0;

    std::uint64_t Size() override { return size_; }
    bool ReadAt(std::int64_t offset, void* buffer, std::uint32_t count) override {
        ++calls;
        std::memset(buffer, 0, count);
        if (offset == trailerAt_)
            std::memcpy(buffer, "zpix", 4);
        else if (offset >= 0 && static_cast<std::size_t>(offset) < head_.size())
            std::memcpy(buffer, &head_[static_cast<std::size_t>(offset)],
                        std::min(std::size_t{count}, head_.size() - static_cast<std::size_t>(offset)));
        return offset >= 0 && static_cast<std::uint64_t>(offset) + count <= size_;
    }

private:
    Bytes head_;
    std::uint64_t size_;
    std::int64_t trailerAt_;
};

} // namespace

TEST(ReadFile, HandsTheHeaderBackWhateverItSays) {
    Bytes file = ZmiBuilder{.frames = {{5, 3}}, .gap = 5000}.Build();
    SetField(file, 0, file_header::kind, 2);
    FileHeader header;
    std::optional<PayloadReader> payload;
    for (const auto& [kind, failingCall] : {std::pair{2, 0}, {1, 0}, {2, 3}}) {
        MemorySource source(file);
        source.failingCall = static_cast<std::size_t>(failingCall);
        EXPECT_EQ(readFile(source, static_cast<std::uint8_t>(kind), header, payload),
                  kind == 2 && failingCall == 0);
        EXPECT_EQ(payload.has_value(), kind == 2 && failingCall == 0);
        EXPECT_EQ(std::memcmp(&header, file.data(), sizeof header), 0);
    }

    // Nothing is read before the size is known, and a truncated header is not returned.
    const FileHeader zeros{};
    for (const auto& [size, calls] : {std::pair<std::size_t, std::size_t>{0, 1}, {111, 2}}) {
        MemorySource source(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_FALSE(readFile(source, 2, header, payload));
        EXPECT_EQ(source.Calls(), calls);
        EXPECT_EQ(std::memcmp(&header, &zeros, sizeof header), 0);
    }
}

TEST(ReadFile, RefusesAnyWrongByte) {
    const Bytes file = plain.Build();
    for (std::size_t at = 0; at < file.size(); ++at) {
        if (at == file_header::dataSize.offset + file_header::dataSize.width)
            at = file.size() - 4; // what is between doesn't matter, or is pixels
        for (const unsigned bit : {0x01u, 0x20u}) {
            Bytes broken = file;
            broken[at] = static_cast<std::uint8_t>(broken[at] ^ bit);
            EXPECT_EQ(VerdictOf(MemorySource(broken)), Verdict::Fails) << at;
        }
    }
}

TEST(ReadFile, RefusesPayloadsThatAreElsewhere) {
    Bytes inHeader = ZmiBuilder{}.Build();
    inHeader.erase(inHeader.begin() + 111);
    SetField(inHeader, 0, file_header::dataOffset, 111);
    EXPECT_EQ(VerdictOf(MemorySource(inHeader)), Verdict::Fails);

    // The sum wraps and therefore matches.
    Bytes wrapping = plain.Build();
    SetField(wrapping, 0, file_header::dataOffset, 0xFFFFFFF0);
    SetField(wrapping, 0, file_header::dataSize, static_cast<std::uint32_t>(wrapping.size() + 12));
    EXPECT_EQ(VerdictOf(MemorySource(wrapping)), Verdict::Fails);

    for (const std::uint32_t end : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF0u})
        EXPECT_EQ(VerdictOf(SparseSource(112, end - 112, end)),
                  end == 0x7FFFFFFF ? Verdict::Loads : Verdict::Fails)
            << "ends at 2 GiB";
}

// The trailer is where the wrapped sum points.
TEST(ReadFile, ReadsPayloadsBeyondFourGiBAsFastAsOthers) {
    SparseSource source(0xFF000000, 0x11000000, 0x10000000);
    EXPECT_EQ(VerdictOf(source), Verdict::Loads);
    EXPECT_NEAR(source.calls, 0x11000000 / PayloadReader::standardWindow, 5) << "wholly, in windows";
}

} // namespace vantrel::tests
