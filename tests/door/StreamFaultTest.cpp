#include "tests/door/Requests.h"
#include "tests/door/TestStream.h"

namespace vantrel::tests {
namespace {

const ZmiBuilder files[] = {
    {.mode = 0, .frames = {{13, 11}, {5, 5}}, .title = "Stream", .gap = 9, .rest = 300},
    {.mode = 1, .frames = {{13, 11}}, .title = "Stream"},
    {.mode = 2, .frames = {{16, 3}, {5, 5}}, .title = "Stream", .rest = 200000},
};

TEST(BrokenStream, FailsEveryRequestAtEveryCall) {
    for (const ZmiBuilder& file : files) {
        TestStream stream(file.Build());
        for (const Request& request : StreamRequests(stream)) {
            stream.BreakAt(0, StreamFault::None);
            const Answer whole = request.ask();
            EXPECT_EQ(S_OK, whole.result);
            const unsigned calls = stream.Calls();
            ASSERT_GT(calls, 5u);
            for (const StreamFault fault :
                 {StreamFault::Fails, StreamFault::ReadsShort, StreamFault::ReadsNothing,
                  StreamFault::ReadsTooMuch, StreamFault::Moves}) {
                for (unsigned call = 1; call <= calls; ++call) {
                    stream.BreakAt(call, fault);
                    const Answer answer = request.ask();
                    // Stat and Seek have no bytes to fall short of.
                    const bool hurts = fault == StreamFault::Fails || fault == StreamFault::ReadsNothing ||
                                       stream.FaultHitRead();
                    const std::string where = request.name + (" at call " + std::to_string(call));
                    // Whoever moves the position meanwhile gets a picture of something or none.
                    if (fault == StreamFault::Moves)
                        EXPECT_TRUE(answer.result == S_OK || answer.result == request.failure) << where;
                    else
                        EXPECT_EQ(hurts ? Answer{request.failure} : whole, answer) << where;
                    EXPECT_GT(8u, stream.References());
                }
            }
            stream.BreakAt(0, StreamFault::None);
            EXPECT_EQ(whole, request.ask()) << "the same object works afterwards";
        }
        EXPECT_EQ(1u, stream.References());
    }
}

TEST(BrokenStream, IsMeasuredByTheLowHalfOfItsSize) {
    const ZmiBuilder& file = files[0];
    const Bytes bytes = file.Build();
    constexpr std::uint64_t fourGiB = std::uint64_t{1} << 32;
    const struct {
        std::uint64_t claim;
        bool loads;
    } cases[] = {{0, false},
                 {1, false},
                 {bytes.size() - 1, false},
                 {bytes.size() + 1, false},
                 {fourGiB - 1, false},
                 {fourGiB, false},
                 {fourGiB + bytes.size(), true},
                 {7 * fourGiB + bytes.size(), true},
                 {~std::uint64_t{0}, false}};
    for (const auto& each : cases) {
        TestStream stream(bytes);
        stream.ClaimSize(each.claim);
        for (const Request& request : StreamRequests(stream))
            EXPECT_EQ(each.loads ? S_OK : request.failure, request.ask().result)
                << request.name << " of " << each.claim << " claimed bytes";
        EXPECT_EQ(1u, stream.References());
    }
}

// The header and the size agree on gigabytes that are not there: nothing may be allocated for them, and the
// reading stops at the first byte that is missing.
TEST(BrokenStream, ClaimsGigabytesThatAreNotThere) {
    for (const std::uint32_t claim : {0x10000000u, 0x7FFFFF00u, 0x80000000u, 0xFFFFFF00u}) {
        Bytes bytes = files[0].Build();
        SetField(bytes, 0, file_header::dataSize,
                 claim - static_cast<std::uint32_t>(files[0].PayloadAt()) - 4);
        TestStream stream(bytes);
        stream.ClaimSize(claim);
        for (const Request& request : StreamRequests(stream)) {
            stream.BreakAt(0, StreamFault::None);
            EXPECT_EQ(Answer{request.failure}, request.ask());
            EXPECT_GT(10u, stream.Calls());
        }
    }
}

TEST(BrokenStream, MayRefuseToBeAStream) {
    TestStream refusing(files[1].Build());
    refusing.RefuseInterfaces(E_ACCESSDENIED);
    TestStream stream(files[1].Build());
    for (const CLSID& classId : {thumbnailProviderClass, propertyStoreClass}) {
        const auto initialize = Create<IInitializeWithStream>(classId, IID_IInitializeWithStream);
        EXPECT_EQ(E_ACCESSDENIED, initialize->Initialize(&refusing, STGM_READ));
        EXPECT_EQ(1u, refusing.References());
        EXPECT_EQ(S_OK, initialize->Initialize(&stream, STGM_READ)) << "nothing is held yet";
    }
}

} // namespace
} // namespace vantrel::tests
