#include "tests/builder/ZmiMutator.h"
#include "tests/builder/ZmiVerdict.h"
#include "tests/host/Requests.h"
#include "tests/host/ScratchFile.h"
#include "tests/host/TestStream.h"

#include <map>

namespace vantrel::tests {
namespace {

// The contents of pictures and facts are checked by the fuzzer's replay.
TEST(HostileFile, GetsTheSameVerdictFromEveryHandler) {
    unsigned shown = 0;
    constexpr unsigned rounds = 2000;
    for (std::uint32_t seed = 0; seed < rounds; ++seed) {
        SCOPED_TRACE(seed);
        ZmiMutator mutator(seed);
        Bytes bytes = mutator.MakeFile().Build();
        for (std::uint32_t count = mutator.Pick(4); count > 0; --count)
            mutator.Mutate(bytes);
        TestStream stream(bytes);
        const ScratchFile scratch(bytes);
        std::map<std::string, Answer> answers;
        for (const Request& request : AllRequests(stream, scratch.Path())) {
            const Answer& answer = answers[request.name] = request.ask();
            ASSERT_TRUE(answer.result == S_OK || answer == Answer{request.failure}) << request.name;
            ASSERT_TRUE(answer.result != S_OK || Judge(bytes) == Verdict::Loads) << request.name;
            // Facts are the same from all handlers and exist whenever a picture does.
            ASSERT_TRUE(answers["thumbnail"].result != S_OK || answer.result == S_OK) << request.name;
            ASSERT_TRUE(request.failure == E_FAIL || answer.result == answers["title"].result)
                << request.name;
        }
        ASSERT_EQ(answers["dimensions"], answers["column"]);
        ASSERT_EQ(answers["thumbnail"], answers["square image"]);
        ASSERT_EQ(answers["letterboxed image"].result, answers["icons"].result);
        shown += answers["icons"].result == S_OK ? 1 : 0;
    }
    // If all files failed, or all loaded, the test would prove nothing.
    EXPECT_LT(rounds / 5, shown);
    EXPECT_GT(rounds - rounds / 5, shown);
}

} // namespace
} // namespace vantrel::tests
