#include "tests/host/Requests.h"
#include "tests/host/ScratchFile.h"
#include "tests/host/TestStream.h"

#include <algorithm>
#include <future>
#include <thread>

namespace vantrel::tests {
namespace {

class Apartment {
public:
    explicit Apartment(COINIT kind) { EXPECT_EQ(S_OK, CoInitializeEx(nullptr, kind)); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() { CoUninitialize(); }
};

const ZmiBuilder file{.mode = 2, .frames = {{15, 11}}, .title = "Apartment"};

// As in hosts that read the file in another apartment: the library gets a proxy for the stream.
TEST(Apartment, ReadsAStreamOfAnotherApartment) {
    const Apartment apartment(COINIT_MULTITHREADED);
    TestStream stream(file.Build());
    ComPtr<IStream> parcel;
    ASSERT_EQ(S_OK, CoMarshalInterThreadInterfaceInStream(IID_IStream, &stream, &parcel));
    std::thread([&, sent = parcel.Detach()] {
        const Apartment other(COINIT_APARTMENTTHREADED);
        ComPtr<IStream> proxy;
        ASSERT_EQ(S_OK, CoGetInterfaceAndReleaseStream(sent, IID_IStream, &proxy));
        EXPECT_NE(static_cast<IStream*>(&stream), proxy.Get());
        EXPECT_EQ((Answer{S_OK, {NaturalPicture(file)}}),
                  AskThumbnail(*ThumbnailProviderOf(*proxy.Get()).Get(), 15));
        EXPECT_EQ((Answer{S_OK, {}, L"bstr:Apartment"}),
                  AskValue(*PropertyStoreOf(*proxy.Get()).Get(), titleKey));
    }).join();
    EXPECT_EQ(1u, stream.References());
}

// Every request once, with its own objects; pictures at their natural size.
std::vector<Answer> AskEverything(const ZmiBuilder& picture) {
    TestStream stream(picture.Build());
    const ScratchFile scratch(picture.Build());
    std::vector<Answer> answers;
    for (const auto& requests : {StreamRequests(stream, picture.frames[0].width),
                                 PathRequests(scratch.Path(), picture.frames[0].width)}) {
        for (const Request& request : requests)
            answers.push_back(request.ask());
    }
    return answers;
}

// Wine's CreateIconIndirect occasionally fails without a reason while other threads make icons. So under Wine
// a failure is retried once; a wrong answer is not.
bool AnswersAsExpected(const ZmiBuilder& picture, const std::vector<Answer>& expected) {
    const std::vector<Answer> answers = AskEverything(picture);
    if (answers == expected)
        return true;
    static const bool inWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    const bool onlyFailed =
        inWine && std::equal(answers.begin(), answers.end(), expected.begin(), expected.end(),
                             [](const Answer& answer, const Answer& right) {
                                 return answer == right || answer.result == E_FAIL;
                             });
    return onlyFailed && AskEverything(picture) == expected;
}

TEST(Apartment, ServesEightThreadsAtOnce) {
    constexpr unsigned rounds = 40;
    std::vector<std::future<unsigned>> guests;
    for (std::uint16_t i = 0; i < 8; ++i) {
        const auto edge = static_cast<std::uint16_t>(40 + i);
        const ZmiBuilder picture{.mode = i % 3u, .frames = {{edge, edge}}, .title = std::string(i, 'x')};
        const std::vector<Answer> expected = AskEverything(picture);
        EXPECT_EQ((Answer{S_OK, {NaturalPicture(picture)}}), expected.at(0));
        guests.push_back(std::async(std::launch::async, [=] {
            const Apartment apartment(COINIT_APARTMENTTHREADED);
            unsigned right = 0;
            for (unsigned round = 0; round < rounds; ++round)
                right += AnswersAsExpected(picture, expected) ? 1 : 0;
            return right;
        }));
    }
    for (std::future<unsigned>& guest : guests)
        EXPECT_EQ(rounds, guest.get());
    EXPECT_EQ(S_OK, CallExport("DllCanUnloadNow"));
}

} // namespace
} // namespace vantrel::tests
