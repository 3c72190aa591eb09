#include "tests/host/Requests.h"
#include "tests/host/TestStream.h"

namespace vantrel::tests {
namespace {

const ZmiBuilder files[] = {
    {.mode = 0, .frames = {{900, 700}, {5, 5}}, .title = "Stream", .gap = 9, .rest = 300},
    {.mode = 1, .frames = {{13, 11}}, .title = "Stream"},
    {.mode = 2, .frames = {{160, 300}, {5, 5}}, .title = "Stream", .rest = 200000},
};

TEST(BrokenStream, FailsEveryRequestAtEveryCall) {
    for (const ZmiBuilder& file : files) {
        TestStream stream(file.Build());
        for (const Request& request : StreamRequests(stream)) {
            stream.BreakAt(0, StreamFault::None);
            const Answer whole = request.ask();
            EXPECT_EQ(S_OK, whole.result);
            const unsigned calls = stream.Calls();
            ASSERT_GE(calls, 3u);
            for (const StreamFault fault :
                 {StreamFault::Fails, StreamFault::ReadsShort, StreamFault::ReadsNothing,
                  StreamFault::ReadsTooMuch, StreamFault::Moves, StreamFault::SaysFalse}) {
                for (unsigned call = 1; call <= calls; ++call) {
                    stream.BreakAt(call, fault);
                    const Answer answer = request.ask();
                    EXPECT_EQ(stream.HasLied() ? Answer{request.failure} : whole, answer)
                        << request.name << " at call " << call;
                }
            }
            stream.BreakAt(0, StreamFault::None);
            EXPECT_EQ(whole, request.ask()) << "the same object works afterwards";
        }
    }
}

TEST(BrokenStream, NeedsToGiveNoMoreThanIsRead) {
    // The gap after the header is not read, and header and payload are separate reads.
    const ZmiBuilder gap{.frames = {{8, 8}}, .gap = 300}, blank{};
    TestStream broken(gap.Build()), sluggish(blank.Build());
    broken.LimitReads(1000, file_header::size, gap.PayloadAt());
    sluggish.LimitReads(150);
    for (TestStream* const stream : {&broken, &sluggish})
        for (const Request& request : StreamRequests(*stream))
            EXPECT_EQ(S_OK, request.ask().result) << request.name;

    TestStream other(Bytes(70000, 'x'));
    EXPECT_EQ(Answer{E_FAIL}, AskThumbnail(*ThumbnailProviderOf(other).Get(), 8));
    EXPECT_EQ(file_header::size, other.BytesAsked()) << "of what is no ZMI at all";
}

TEST(BrokenStream, IsMeasuredByTheLowHalfOfItsSize) {
    const Bytes bytes = files[0].Build();
    constexpr std::uint64_t fourGiB = std::uint64_t{1} << 32;
    for (const std::uint64_t claim :
         {std::uint64_t{0}, bytes.size() - 1, bytes.size() + 1, fourGiB - 1, fourGiB, fourGiB + bytes.size(),
          7 * fourGiB + bytes.size(), ~std::uint64_t{0}}) {
        TestStream stream(bytes);
        stream.claimedSize = claim;
        for (const Request& request : StreamRequests(stream))
            EXPECT_EQ(claim % fourGiB == bytes.size() ? S_OK : request.failure, request.ask().result)
                << request.name << " of " << claim << " claimed bytes";
    }
}

} // namespace
} // namespace vantrel::tests
