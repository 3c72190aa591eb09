#include "tests/host/Requests.h"
#include "tests/host/ScratchFile.h"
#include "tests/host/TestStream.h"

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
}

// Every request once, with its own objects; pictures at their natural size. Under Wine a failure is retried
// once: its CreateIconIndirect occasionally fails without a reason while other threads make icons.
std::vector<Answer> AskEverything(const ZmiBuilder& picture) {
    static const bool inWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    TestStream stream(picture.Build());
    const ScratchFile scratch(picture.Build());
    std::vector<Answer> answers;
    for (const Request& request : AllRequests(stream, scratch.Path(), picture.frames[0].width)) {
        answers.push_back(request.ask());
        if (inWine && answers.back().result == E_FAIL)
            answers.back() = request.ask();
    }
    return answers;
}

TEST(Apartment, ServesEightThreadsAtOnce) {
    std::vector<std::thread> guests;
    for (std::uint16_t i = 0; i < 8; ++i) {
        const auto edge = static_cast<std::uint16_t>(40 + i);
        const ZmiBuilder picture{.mode = i % 3u, .frames = {{edge, edge}}, .title = std::string(i, 'x')};
        const std::vector<Answer> expected = AskEverything(picture);
        EXPECT_EQ((Answer{S_OK, {NaturalPicture(picture)}}), expected.at(0));
        guests.emplace_back([=] {
            const Apartment apartment(COINIT_APARTMENTTHREADED);
            for (int round = 0; round < 40; ++round)
                EXPECT_EQ(expected, AskEverything(picture));
        });
    }
    for (std::thread& guest : guests)
        guest.join();
    EXPECT_EQ(S_OK, CallExport("DllCanUnloadNow"));
}

} // namespace
} // namespace vantrel::tests
