#include "tests/host/Requests.h"
#include "tests/host/ResourceWatch.h"
#include "tests/host/ScratchFile.h"
#include "tests/host/TestStream.h"

#include <thread>

namespace vantrel::tests {
namespace {

class Starvation : public testing::Test {
protected:
    void SetUp() override {
        if (!IsMemoryVisible())
            GTEST_SKIP() << memoryNotVisible;
    }
};

// How many of the acquired resources belong to the host afterwards.
std::size_t HandedOut(const Answer& answer) {
    return answer.pictures.size() + (answer.text.starts_with(L"bstr:") ? 1 : 0);
}

// Whether a request may return this result if that function failed.
bool IsFair(const Request& request, const std::string& refused, const Answer& answer, const Answer& whole) {
    const bool memory = refused.ends_with("alloc"); // of any kind
    if (whole.result != S_OK && answer == whole)
        return true;
    // A text without storage counts as empty, and a picture without its background is still a picture.
    if (answer.result == S_OK)
        return (memory && (answer == whole || answer.text == L"bstr:" || answer.text == L"bstr null")) ||
               refused == "CreateSolidBrush";
    return answer.result == (memory || refused == "SysAllocString" ? E_OUTOFMEMORY : request.failure);
}

// A thread on which no exception has occurred yet.
Answer AskOnNewThread(const Request& request) {
    Answer answer;
    std::thread([&] { answer = request.ask(); }).join();
    return answer;
}

// Makes each acquisition in turn fail, alone and with all that follow, until a run has no failure.
void Starve(const Request& request, HRESULT expected = S_OK) {
    SCOPED_TRACE(request.name);
    const Answer whole = request.ask();
    EXPECT_EQ(expected, whole.result);
    for (const Refuse mode : {Refuse::One, Refuse::FromThereOn}) {
        for (unsigned number = 1;; ++number) {
            Answer answer;
            std::string refused;
            {
                ResourceWatch watch(number, mode);
                answer = AskOnNewThread(request);
                refused = watch.RefusedName();
                ASSERT_EQ(HandedOut(answer), watch.Live()) << refused << " refused, taking " << number;
            }
            if (refused.empty()) {
                EXPECT_EQ(whole, answer);
                EXPECT_TRUE(number > 1 || mode != Refuse::One);
                break;
            }
            ASSERT_TRUE(IsFair(request, refused, answer, whole))
                << refused << " refused, taking " << number << ": " << answer;
            ASSERT_EQ(whole, request.ask()) << "the same object works afterwards";
        }
    }
}

const ZmiBuilder files[] = {
    {.mode = 0, .frames = {{16, 9}}, .title = "Starved"},
    {.mode = 1, .frames = {{16, 9}, {4, 4}, {.width = 3, .height = 3, .palette = PatternColors(1)}}},
    {.mode = 2, .frames = {{9, 16}}, .title = "Starved"},
    {},
    // Throws out of the decoder; making the exception takes memory as well, for the message.
    {.mode = 0, .frameTable = true},
};

TEST_F(Starvation, OfAnyRequest) {
    for (const ZmiBuilder& file : files) {
        TestStream stream(file.Build());
        const ScratchFile scratch(file.Build());
        for (const Request& request : AllRequests(stream, scratch.Path()))
            Starve(request, file.frameTable ? request.failure : S_OK);
    }
}

TEST_F(Starvation, OfManyThreadsAtOnce) {
    constexpr int threadCount = 40;
    const ScratchFile scratch(files[0].Build());
    std::vector<std::vector<Request>> requests;
    for (int i = 0; i < threadCount; ++i)
        requests.push_back(PathRequests(scratch.Path()));
    const auto refuse = [](auto...) { return nullptr; };
    const ImportHook<"malloc", void*(std::size_t)> malloc(TheDll(), refuse);
    const ImportHook<"calloc", void*(std::size_t, std::size_t)> calloc(TheDll(), refuse);
    const ImportHook<"_aligned_malloc", void*(std::size_t, std::size_t)> alignedMalloc(TheDll(), refuse);
    std::vector<std::thread> threads;
    for (const std::vector<Request>& all : requests)
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round)
                for (const Request& request : all)
                    EXPECT_EQ(E_OUTOFMEMORY, request.ask().result) << request.name;
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(Starvation, OfCreationAndOfTakingAPath) {
    const std::wstring path(200, L'x');
    for (const CLSID& classId : {thumbnailProviderClass, extractImageClass, iconHandlerClass,
                                 columnProviderClass, propertyStoreClass}) {
        Starve({"creation", E_FAIL, [&] {
                    ComPtr<IClassFactory> factory;
                    ComPtr<IUnknown> object;
                    ComPtr<IPersistFile> persist;
                    HRESULT result = GetClassObject(classId, IID_IClassFactory, &factory);
                    EXPECT_EQ(result == S_OK, factory != nullptr);
                    if (factory)
                        result = factory->CreateInstance(nullptr, IID_IUnknown, &object);
                    EXPECT_EQ(result == S_OK, object != nullptr);
                    if (object && object->QueryInterface(IID_IPersistFile, &persist) == S_OK)
                        result = persist->Load(path.c_str(), 0);
                    return Answer{result};
                }});
    }
    EXPECT_EQ(S_OK, CallExport("DllCanUnloadNow"));
}

} // namespace
} // namespace vantrel::tests
