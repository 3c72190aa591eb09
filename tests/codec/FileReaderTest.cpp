#include "codec/FileReader.h"

#include "tests/codec/LoadFrom.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vantrel::tests {

namespace {

const ZmiBuilder plain{.frames = {{5, 3}}};

// A file that is only claimed: its head and trailer exist, what lies between reads as anything.
class SparseSource final : public ByteSource {
public:
    SparseSource(Bytes head, std::uint64_t payloadEnd) : head_(std::move(head)), payloadEnd_(payloadEnd) {
        SetField(head_, 0, file_header::dataSize, static_cast<std::uint32_t>(payloadEnd - file_header::size));
    }

    std::uint64_t bytesRead = 0;

    std::uint64_t Size() override { return payloadEnd_ + 4; }
    bool ReadAt(std::int64_t offset, void* buffer, std::uint32_t count) override {
        const auto begin = static_cast<std::uint64_t>(offset);
        if (offset < 0 || begin + count > Size())
            return false;
        if (begin < head_.size())
            std::memcpy(buffer, head_.data() + begin, std::min<std::size_t>(count, head_.size() - begin));
        else if (begin == payloadEnd_)
            std::memcpy(buffer, "zpix", 4);
        bytesRead += count;
        return true;
    }

private:
    Bytes head_;
    std::uint64_t payloadEnd_;
};

} // namespace

TEST(FileReader, AcceptsAnyGapAndHandsTheHeaderBack) {
    for (const std::size_t gap : {0u, 1u, 5000u}) {
        const Bytes file = ZmiBuilder{.frames = {{5, 3}}, .gap = gap}.Build();
        MemorySource source(file);
        FileHeader header;
        std::optional<PayloadReader> payload;
        ASSERT_TRUE(readFile(source, 1, header, payload)) << gap;
        EXPECT_EQ(std::memcmp(&header, file.data(), sizeof header), 0);
        EXPECT_TRUE(payload->Contains(0, file.size() - 4 - 112 - gap));
        EXPECT_FALSE(payload->Contains(0, file.size() - 4 - 112 - gap + 1));
    }
}

TEST(FileReader, RefusesAnyWrongByteOfMagicAndTrailer) {
    const Bytes file = plain.Build();
    for (std::size_t i : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u})
        for (const std::size_t at : {i, file.size() - 1 - i % 4}) {
            Bytes broken = file;
            broken[at] ^= 0x20;
            EXPECT_EQ(VerdictOf(broken), Verdict::Fails) << at;
        }
}

TEST(FileReader, RefusesWrongHeaderFields) {
    const Bytes file = plain.Build();
    const std::uint32_t size = GetField(file, 0, file_header::dataSize);
    const struct {
        Field field;
        std::uint32_t value;
    } cases[] = {
        {file_header::version, 0},
        {file_header::version, 2},
        {file_header::version, 0x10001},
        {file_header::headerSize, 111},
        {file_header::headerSize, 113},
        {file_header::kind, 0},
        {file_header::kind, 2},
        {file_header::dataOffset, 111},
        {file_header::dataOffset, 113},
        {file_header::dataSize, size - 1},
        {file_header::dataSize, size + 1},
        {file_header::dataSize, 0},
    };
    for (const auto& [field, value] : cases) {
        Bytes broken = file;
        SetField(broken, 0, field, value);
        MemorySource source(broken);
        FileHeader header;
        std::optional<PayloadReader> payload;
        EXPECT_FALSE(readFile(source, 1, header, payload)) << field.offset << " = " << value;
        EXPECT_FALSE(payload.has_value());
        EXPECT_EQ(std::memcmp(&header, broken.data(), sizeof header), 0);
    }

    // One byte before the payload is missing; nothing else is wrong.
    Bytes early = ZmiBuilder{}.Build();
    early.erase(early.begin() + 111);
    SetField(early, 0, file_header::dataOffset, 111);
    EXPECT_EQ(VerdictOf(early), Verdict::Fails);

    Bytes other = file;
    SetField(other, 0, file_header::kind, 2);
    MemorySource source(other);
    FileHeader header;
    std::optional<PayloadReader> payload;
    EXPECT_TRUE(readFile(source, 2, header, payload));
}

TEST(FileReader, RefusesWrongSizes) {
    Bytes file = plain.Build();
    MemorySource unknown(file);
    unknown.claimedSize = 0;
    DecodedImage image;
    EXPECT_FALSE(LoadFrom(unknown, image));
    EXPECT_EQ(unknown.Calls(), 1u) << "read before its size is known";

    file.push_back('x');
    EXPECT_EQ(VerdictOf(file), Verdict::Fails);

    FileHeader header;
    std::memset(&header, 0xAA, sizeof header);
    std::optional<PayloadReader> payload;
    MemorySource nothing({});
    EXPECT_FALSE(readFile(nothing, 1, header, payload));
    const FileHeader zeros{};
    EXPECT_EQ(std::memcmp(&header, &zeros, sizeof header), 0);
}

TEST(FileReader, ComparesTheLow32BitsOfTheSize) {
    const Bytes file = plain.Build();
    for (const std::uint64_t more :
         {std::uint64_t{1} << 32, std::uint64_t{7} << 32, std::uint64_t{1} << 31}) {
        MemorySource source(file);
        source.claimedSize = file.size() + more;
        EXPECT_EQ(VerdictOf(std::move(source)), more >> 32 ? Verdict::Loads : Verdict::Fails) << more;
    }

    // A sum that wraps passes the header's check; the payload it promises can't be read.
    Bytes wrapping = file;
    SetField(wrapping, 0, file_header::dataOffset, 0xFFFFFFF0);
    SetField(wrapping, 0, file_header::dataSize, static_cast<std::uint32_t>(file.size() + 12));
    MemorySource source(wrapping);
    FileHeader header;
    std::optional<PayloadReader> payload;
    EXPECT_TRUE(readFile(source, 1, header, payload));
    EXPECT_EQ(VerdictOf(wrapping), Verdict::Fails);
}

TEST(FileReader, PayloadsEndBelowTwoGiB) {
    Bytes head = plain.Build();
    head.resize(head.size() - 4);
    SparseSource below(head, 0x7FFFFFFF);
    DecodedImage image;
    EXPECT_TRUE(LoadFrom(below, image, 0));
    EXPECT_EQ(below.bytesRead, below.Size());
    EXPECT_EQ(VerdictOf(SparseSource(head, 0x80000000), 0), Verdict::Fails);
    EXPECT_EQ(VerdictOf(SparseSource(head, 0xFFFFFFF0), 0), Verdict::Fails);
}

} // namespace vantrel::tests
