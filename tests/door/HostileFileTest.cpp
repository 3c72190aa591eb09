#include "tests/builder/ZmiMutator.h"
#include "tests/builder/ZmiVerdict.h"
#include "tests/door/Requests.h"
#include "tests/door/ScratchFile.h"
#include "tests/door/TestStream.h"

#include <map>

namespace vantrel::tests {
namespace {

// "width x height" of a file's first frame, by a reading of its bytes that owes nothing to the library; empty
// when the file doesn't load or has none.
std::wstring Dimensions(const Bytes& file) {
    if (Judge(file) != Verdict::Loads)
        return {};
    const std::size_t header = GetField(file, 0, file_header::dataOffset);
    const std::size_t pixels = GetField(file, header, image_header::pixelOffset);
    if (pixels == 0)
        return L"1024 x 600";
    std::uint32_t width = GetField(file, header, image_header::width);
    std::uint32_t height = GetField(file, header, image_header::height);
    if (GetField(file, header, image_header::flags) & 1) {
        if (GetField(file, pixels, frame_table::frameCount) == 0)
            return {};
        width = GetField(file, pixels + frame_table::size, frame_record::width);
        height = GetField(file, pixels + frame_table::size, frame_record::height);
    }
    return std::to_wstring(width) + L" x " + std::to_wstring(height);
}

// Whether a picture can be painted, and its pixels, replaying the fuzzer's mutations checks without a door.
TEST(HostileFile, GetsTheSameVerdictFromEveryHandler) {
    unsigned loaded = 0;
    constexpr unsigned rounds = 2000;
    for (std::uint32_t seed = 0; seed < rounds; ++seed) {
        SCOPED_TRACE(seed);
        ZmiMutator mutator(seed);
        Bytes bytes = mutator.MakeFile().Build();
        for (std::uint32_t count = mutator.Pick(4); count > 0; --count)
            mutator.Mutate(bytes);
        const std::wstring dimensions = Dimensions(bytes);
        loaded += dimensions.empty() ? 0 : 1;

        TestStream stream(bytes);
        const ScratchFile scratch(bytes);
        std::map<std::string, Answer> answers;
        for (const auto& requests : {StreamRequests(stream), PathRequests(scratch.Path())})
            for (const Request& request : requests) {
                const Answer answer = answers[request.name] = request.ask();
                ASSERT_TRUE(answer.result == S_OK || answer == Answer{request.failure}) << request.name;
                ASSERT_TRUE(!dimensions.empty() || answer.result == request.failure) << request.name;
                ASSERT_TRUE(dimensions.empty() || answer.result == S_OK || request.failure == E_FAIL)
                    << request.name;
            }
        ASSERT_EQ(1u, stream.References());
        ASSERT_TRUE(dimensions.empty() || answers["column"].text == L"bstr:" + dimensions)
            << answers["column"];
        ASSERT_EQ(answers["dimensions"], answers["column"]);
        ASSERT_EQ(answers["thumbnail"], answers["square image"]);
        ASSERT_EQ(answers["letterboxed image"].result, answers["icons"].result);
    }
    // Files that all fail, or all load, would show nothing.
    EXPECT_LT(rounds / 5, loaded);
    EXPECT_GT(rounds - rounds / 5, loaded);
}

} // namespace
} // namespace vantrel::tests
