#include "tests/door/Requests.h"
#include "tests/door/ResourceWatch.h"
#include "tests/door/ScratchFile.h"
#include "tests/door/TestStream.h"

namespace vantrel::tests {
namespace {

// How many of the acquired resources belong to the host afterwards.
std::size_t HandedOut(const Answer& answer) {
    return answer.pictures.size() + (answer.text.starts_with(L"bstr:") ? 1 : 0);
}

// Whether a request may return this result if that function failed.
bool IsFair(const Request& request, const std::string& refused, const Answer& answer, const Answer& whole) {
    const bool memory = refused.ends_with("alloc"); // of any kind
    // A text without storage counts as empty, and a picture without its background is still a picture.
    if (answer.result == S_OK)
        return (memory && (answer == whole || answer.text == L"bstr:" || answer.text == L"bstr null")) ||
               refused == "CreateSolidBrush";
    return answer.result == (memory || refused == "SysAllocString" ? E_OUTOFMEMORY : request.failure);
}

// Makes each acquisition in turn fail, until a run has no failure.
void Starve(const Request& request) {
    SCOPED_TRACE(request.name);
    const Answer whole = request.ask();
    EXPECT_EQ(S_OK, whole.result);
    for (const Refuse mode : {Refuse::One, Refuse::AllLarge}) {
        for (unsigned number = 1;; ++number) {
            Answer answer;
            std::string refused;
            {
                ResourceWatch watch(number, mode);
                answer = request.ask();
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
    {.mode = 1, .frames = {{16, 9}, {4, 4}, {.width = 3, .height = 3, .palette = PatternColours(1)}}},
    {.mode = 2, .frames = {{9, 16}}, .title = "Starved"},
    {},
};

TEST(Starvation, OfAnyRequest) {
    LetOneExceptionHappen();
    for (const ZmiBuilder& file : files) {
        TestStream stream(file.Build());
        const ScratchFile scratch(file.Build());
        for (const Request& request : StreamRequests(stream))
            Starve(request);
        for (const Request& request : PathRequests(scratch.Path()))
            Starve(request);
        EXPECT_EQ(1u, stream.References());
    }
}

TEST(Starvation, OfCreationAndOfTakingAPath) {
    LetOneExceptionHappen();
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
