#include "tests/host/Requests.h"
#include "tests/host/ScratchFile.h"
#include "tests/host/TestStream.h"

namespace vantrel::tests {
namespace {

TEST(StreamHandlers, TakeTheirStreamOnce) {
    for (const CLSID& classId : {thumbnailProviderClass, propertyStoreClass}) {
        TestStream first(ZmiBuilder{.frames = {{9, 9}}, .title = "first"}.Build());
        TestStream second(ZmiBuilder{}.Build());
        auto initialize = Create<IInitializeWithStream>(classId, IID_IInitializeWithStream);
        const bool shows = IsEqualCLSID(classId, thumbnailProviderClass);
        const auto ask = [&] {
            IUnknown* const object = initialize.Get();
            return shows
                       ? AskThumbnail(*Ask<IThumbnailProvider>(object, __uuidof(IThumbnailProvider)).Get(), 9)
                       : AskValue(*Ask<IPropertyStore>(object, IID_IPropertyStore).Get(), titleKey);
        };
        EXPECT_EQ(shows ? E_FAIL : S_FALSE, ask().result) << "before it has a stream";
        EXPECT_EQ(E_POINTER, initialize->Initialize(nullptr, STGM_READ));
        second.refusal = E_ACCESSDENIED;
        EXPECT_EQ(E_ACCESSDENIED, initialize->Initialize(&second, STGM_READ));
        second.refusal = S_OK;
        EXPECT_EQ(S_OK, initialize->Initialize(&first, STGM_READ)) << "nothing is held yet";
        for (IStream* const refused : {static_cast<IStream*>(&second), static_cast<IStream*>(nullptr)})
            EXPECT_EQ(E_UNEXPECTED, initialize->Initialize(refused, STGM_READ));
        for (int round = 0; round < 3; ++round) {
            const Answer answer = ask();
            EXPECT_TRUE(shows ? answer.pictures.at(0).width == 9 : answer.text == L"bstr:first") << answer;
        }
        EXPECT_EQ(0u, second.Calls());
        EXPECT_EQ(1u, second.References());
        EXPECT_EQ(2u, first.References());
    }
}

TEST(PathHandlers, TakeAnyNumberOfPathsAndNothingElse) {
    const ScratchFile scratch(FlatFile(8, 4).Build());
    for (const Request& request : PathRequests(L"C:\\no such file.zmi"))
        EXPECT_EQ(Answer{request.failure}, request.ask()) << request.name;
    const auto image = ImageHandlerOf(L"C:\\no such file.zmi");
    const auto icons = IconHandlerOf(L"C:\\no such file.zmi");
    const ComPtr<IPersistFile> handlers[] = {Ask<IPersistFile>(image.Get(), IID_IPersistFile),
                                             Ask<IPersistFile>(icons.Get(), IID_IPersistFile)};
    for (const auto& handler : handlers) {
        CLSID found{};
        wchar_t* name = nullptr;
        EXPECT_EQ(E_NOTIMPL, handler->GetClassID(&found));
        EXPECT_EQ(E_NOTIMPL, handler->IsDirty());
        EXPECT_EQ(E_NOTIMPL, handler->Save(L"x", TRUE));
        EXPECT_EQ(E_NOTIMPL, handler->SaveCompleted(L"x"));
        EXPECT_EQ(E_NOTIMPL, handler->GetCurFile(&name));
        EXPECT_EQ(S_OK, handler->Load(scratch.Path(), 0));
        EXPECT_EQ(S_OK, handler->Load(nullptr, 0));
    }
    EXPECT_EQ(Answer{E_FAIL}, AskImage(*image.Get(), {8, 8})) << "an empty path replaced the other";
    EXPECT_EQ(Answer{E_FAIL}, AskIcons(*icons.Get(), 8, 8));
    for (const auto& handler : handlers)
        EXPECT_EQ(S_OK, handler->Load(scratch.Path(), 0));
    // Others may have the file open, even for writing.
    const UniqueKernelHandle writer(
        CreateFileW(scratch.Path(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ((Answer{S_OK, {FlatPicture(8, 4)}}), AskImage(*image.Get(), {8, 8}));
    EXPECT_EQ(S_OK, AskIcons(*icons.Get(), 8, 8).result);
}

} // namespace
} // namespace vantrel::tests
