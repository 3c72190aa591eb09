#include "tests/builder/ZmiMutator.h"
#include "tests/builder/ZmiVerdict.h"
#include "tests/door/Requests.h"
#include "tests/door/ScratchFile.h"
#include "tests/door/TestStream.h"

namespace vantrel::tests {
namespace {

// What hosts must be told of a file, by a reading of its bytes that owes nothing to the library.
struct Expectation {
    bool facts = false;
    bool paints = false;
    unsigned width = 0;
    unsigned height = 0;
    unsigned depth = 0;
};

// Bytes of a frame's pixels once decoded.
std::size_t DecodedBytes(unsigned mode, unsigned width, unsigned height) {
    return mode == 0 ? (height + 7) / 8 * std::size_t{width} : PixelBytes(mode, width, height);
}

Expectation Expect(const Bytes& file) {
    if (Judge(file) != Verdict::Loads)
        return {};
    const std::size_t header = GetField(file, 0, file_header::dataOffset);
    const std::size_t pixels = GetField(file, header, image_header::pixelOffset);
    if (pixels == 0)
        return {true, true, 1024, 600, 1};
    const std::uint32_t flags = GetField(file, header, image_header::flags);
    const unsigned mode = flags >> 3 & 3;
    constexpr unsigned depths[] = {1, 8, 16, 3};
    Expectation expected{true, true, GetField(file, header, image_header::width),
                         GetField(file, header, image_header::height), depths[mode]};
    unsigned frameMode = mode;
    if (flags & 1) {
        if (GetField(file, pixels, frame_table::frameCount) == 0)
            return {};
        const std::size_t record = pixels + frame_table::size;
        frameMode = GetField(file, record, frame_record::flags) >> 3 & 3;
        expected.width = GetField(file, record, frame_record::width);
        expected.height = GetField(file, record, frame_record::height);
    }
    const bool empty = expected.width == 0 || expected.height == 0;
    expected.paints = frameMode != 3 && (frameMode != 1 || mode == 1) &&
                      (empty || DecodedBytes(frameMode, expected.width, expected.height) <=
                                    DecodedBytes(mode, expected.width, expected.height));
    return expected;
}

constexpr unsigned edge = 16;

// Whether every handler's answer about the file is the expected one.
void CheckRequests(const std::vector<Request>& requests, const Expectation& expected) {
    const double scale = std::min(double{edge} / expected.width, double{edge} / expected.height);
    const auto fittedWidth = static_cast<unsigned>(expected.width > 0 ? scale * expected.width : 0);
    const auto fittedHeight = static_cast<unsigned>(expected.height > 0 ? scale * expected.height : 0);
    const bool shows = expected.paints && fittedWidth > 0 && fittedHeight > 0;
    const std::wstring dimensions =
        L"bstr:" + std::to_wstring(expected.width) + L" x " + std::to_wstring(expected.height);
    for (const Request& request : requests) {
        SCOPED_TRACE(request.name);
        const std::string_view name = request.name;
        const bool fitted = name == "thumbnail" || name == "square image";
        const bool succeeds = request.failure == S_FALSE ? expected.facts : fitted ? shows : expected.paints;
        const Answer answer = request.ask();
        ASSERT_EQ(succeeds ? S_OK : request.failure, answer.result);
        if (!succeeds)
            continue;
        if (fitted) {
            ASSERT_EQ(fittedWidth, answer.pictures.at(0).width);
            ASSERT_EQ(fittedHeight, answer.pictures.at(0).height);
        } else if (name == "dimensions" || name == "column") {
            ASSERT_EQ(dimensions, answer.text);
        } else if (name == "bit depth") {
            ASSERT_EQ(L"i4:" + std::to_wstring(expected.depth), answer.text);
        }
    }
}

void CheckFile(const Bytes& bytes, const Expectation& expected) {
    TestStream stream(bytes);
    const ScratchFile scratch(bytes);
    ASSERT_NO_FATAL_FAILURE(CheckRequests(StreamRequests(stream, edge), expected));
    ASSERT_NO_FATAL_FAILURE(CheckRequests(PathRequests(scratch.Path(), edge), expected));
    ASSERT_EQ(1u, stream.References());
}

TEST(HostileFile, CutOffAnywhereIsRefused) {
    const ZmiBuilder files[] = {
        {.mode = 0, .frames = {{16, 9}}},
        {.mode = 1, .frames = {{5, 5}, {4, 4}}},
        {.mode = 2, .frames = {{8, 3}}, .gap = 40},
    };
    for (const ZmiBuilder& file : files) {
        Bytes bytes = file.Build();
        while (!bytes.empty()) {
            bytes.pop_back();
            ASSERT_NO_FATAL_FAILURE(CheckFile(bytes, {}))
                << "mode " << file.mode << " cut to " << bytes.size();
        }
    }
}

TEST(HostileFile, MutatedGetsTheSameVerdictFromEveryHandler) {
    unsigned loaded = 0;
    constexpr unsigned rounds = 2000;
    for (std::uint32_t seed = 0; seed < rounds; ++seed) {
        ZmiMutator mutator(seed);
        Bytes bytes = mutator.MakeFile().Build();
        for (std::uint32_t count = mutator.Pick(4); count > 0; --count)
            mutator.Mutate(bytes);
        const Expectation expected = Expect(bytes);
        loaded += expected.facts ? 1 : 0;
        ASSERT_NO_FATAL_FAILURE(CheckFile(bytes, expected)) << "seed " << seed;
    }
    // Files that all fail, or all load, would show nothing.
    EXPECT_LT(rounds / 5, loaded);
    EXPECT_GT(rounds - rounds / 5, loaded);
}

} // namespace
} // namespace vantrel::tests
