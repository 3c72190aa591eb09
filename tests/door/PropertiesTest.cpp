#include "tests/host/Requests.h"
#include "tests/host/ScratchFile.h"
#include "tests/host/TestStream.h"

#include <cstring>

namespace vantrel::tests {
namespace {

TEST(PropertyStore, ListsItsThreeKeysForReading) {
    const auto store = Create<IPropertyStore>(propertyStoreClass, IID_IPropertyStore);
    DWORD count = 0;
    EXPECT_EQ(S_OK, store->GetCount(&count));
    EXPECT_EQ(3u, count);
    const PROPERTYKEY foreign = {IID_IUnknown, 99};
    const PROPERTYKEY expected[] = {titleKey, dimensionsKey, bitDepthKey, foreign, foreign};
    constexpr DWORD indices[] = {0, 1, 2, 3, 0xFFFFFFFF};
    for (int i = 0; i < 5; ++i) {
        PROPERTYKEY key = foreign;
        EXPECT_EQ(S_OK, store->GetAt(indices[i], &key));
        EXPECT_TRUE(IsEqualPropertyKey(expected[i], key)) << indices[i];
        EXPECT_EQ(E_UNEXPECTED, store->SetValue(expected[i], PROPVARIANT{}));
        const auto capabilities =
            Ask<IPropertyStoreCapabilities>(store.Get(), IID_IPropertyStoreCapabilities);
        EXPECT_EQ(S_FALSE, capabilities->IsPropertyWritable(expected[i]));
    }
    EXPECT_EQ(E_UNEXPECTED, store->Commit());
    EXPECT_EQ(E_POINTER, store->GetCount(nullptr));
    EXPECT_EQ(E_POINTER, store->GetAt(0, nullptr));
    EXPECT_EQ(S_OK, store->GetAt(3, nullptr));
    EXPECT_EQ(E_POINTER, store->GetValue(titleKey, nullptr));
}

TEST(PropertyStore, TellsTheFactsOfAFile) {
    const std::string full(34, 'x');
    struct {
        ZmiBuilder file;
        std::wstring title, dimensions, depth;
    } cases[] = {
        {{.mode = 0, .frames = {{640, 480}}, .title = "A title"}, L"A title", L"640 x 480", L"1"},
        {{.mode = 1, .frames = {{3, 2}, {9, 9}}, .title = full}, std::wstring(34, L'x'), L"3 x 2", L"8"},
        {{.mode = 2, .frames = {{0, 0}}}, L"", L"0 x 0", L"16"},
        {{.mode = 3, .frames = {{1, 65535}}, .title = "\xE9t\xE9"}, L"?", L"1 x 65535", L"3"},
        {{.title = "blank"}, L"blank", L"1024 x 600", L"1"},
        {{.mode = 2, .frames = {{65535, 0}}}, L"", L"65535 x 0", L"16"},
    };
    wchar_t accented[8] = {};
    MultiByteToWideChar(CP_ACP, 0, "\xE9t\xE9", -1, accented, 8);
    cases[3].title = accented;
    for (const auto& each : cases) {
        TestStream stream(each.file.Build());
        const auto store = PropertyStoreOf(stream);
        EXPECT_EQ((Answer{S_OK, {}, L"bstr:" + each.title}), AskValue(*store.Get(), titleKey));
        EXPECT_EQ((Answer{S_OK, {}, L"bstr:" + each.dimensions}), AskValue(*store.Get(), dimensionsKey));
        EXPECT_EQ((Answer{S_OK, {}, L"i4:" + each.depth}), AskValue(*store.Get(), bitDepthKey));
        EXPECT_EQ(2u, stream.References());
    }
}

TEST(PropertyStore, ReadsTheFileBeforeItLooksAtTheKey) {
    const PROPERTYKEY strangers[] = {{imageProperties, 3}, {imageProperties, 2}, {titleKey.fmtid, 13}};
    TestStream good(ZmiBuilder{.frames = {{2, 2}}}.Build());
    TestStream bad({'z', 'p', 'i', 'x'});
    const auto store = PropertyStoreOf(good);
    for (const PROPERTYKEY& key : strangers) {
        const unsigned before = good.Calls();
        EXPECT_EQ(Answer{E_UNEXPECTED}, AskValue(*store.Get(), key));
        EXPECT_LT(before, good.Calls());
        EXPECT_EQ(Answer{S_FALSE}, AskValue(*PropertyStoreOf(bad).Get(), key));
    }
    // A file without a first frame can't be read either.
    TestStream empty(ZmiBuilder{.mode = 2, .frameTable = true}.Build());
    EXPECT_EQ(Answer{S_FALSE}, AskValue(*PropertyStoreOf(empty).Get(), titleKey));
}

TEST(ColumnProvider, DescribesItsOneColumn) {
    const auto provider = Create<IColumnProvider>(columnProviderClass, IID_IColumnProvider);
    SHCOLUMNINIT folder{};
    EXPECT_EQ(S_OK, provider->Initialize(&folder));
    SHCOLUMNINFO untouched;
    std::memset(&untouched, 0x5A, sizeof untouched);
    SHCOLUMNINFO expected = untouched;
    expected.scid = dimensionsKey;
    expected.vt = VT_LPSTR; // the values are VT_BSTR
    expected.fmt = 0;
    expected.cChars = 32;
    expected.csFlags = 0x21;
    SHCOLUMNINFO info = untouched;
    EXPECT_EQ(S_OK, provider->GetColumnInfo(0, &info));
    EXPECT_EQ(0, std::memcmp(&expected, &info, sizeof info)) << "and nothing else is written";
    for (const DWORD index : {1u, 0xFFFFFFFFu}) {
        info = untouched;
        EXPECT_EQ(S_FALSE, provider->GetColumnInfo(index, &info));
        EXPECT_EQ(0, std::memcmp(&untouched, &info, sizeof info));
    }
    EXPECT_EQ(E_POINTER, provider->GetColumnInfo(0, nullptr));
}

TEST(ColumnProvider, AnswersForItsColumnAndItsFilesOnly) {
    const Bytes bytes = ZmiBuilder{.mode = 0, .frames = {{640, 480}}}.Build();
    const ScratchFile file(bytes);
    const ScratchFile renamed(bytes, L".bmp");
    const ScratchFile broken({'z', 'p', 'i', 'x'});
    const struct {
        const wchar_t* path;
        const wchar_t* extension;
        DWORD attributes;
        SHCOLUMNID column;
        bool served;
    } cases[] = {
        {file.Path(), L".zmi", FILE_ATTRIBUTE_NORMAL, dimensionsKey, true},
        {file.Path(), L".ZmI", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN, dimensionsKey, true},
        {renamed.Path(), L".zmi", FILE_ATTRIBUTE_ARCHIVE, dimensionsKey, true}, // the extension is the host's
        {renamed.Path(), L".bmp", FILE_ATTRIBUTE_NORMAL, dimensionsKey, false},
        {file.Path(), L"zmi", FILE_ATTRIBUTE_NORMAL, dimensionsKey, false},
        {file.Path(), nullptr, FILE_ATTRIBUTE_NORMAL, dimensionsKey, false},
        {file.Path(), L".zmi", FILE_ATTRIBUTE_DIRECTORY, dimensionsKey, false},
        {file.Path(), L".zmi", FILE_ATTRIBUTE_OFFLINE | FILE_ATTRIBUTE_ARCHIVE, dimensionsKey, false},
        {file.Path(), L".zmi", FILE_ATTRIBUTE_NORMAL, bitDepthKey, false},
        {file.Path(), L".zmi", FILE_ATTRIBUTE_NORMAL, {titleKey.fmtid, 13}, false},
        {broken.Path(), L".zmi", FILE_ATTRIBUTE_NORMAL, dimensionsKey, false},
        {L"C:\\windows", L".zmi", FILE_ATTRIBUTE_NORMAL, dimensionsKey, false},
        {L"", L".zmi", FILE_ATTRIBUTE_NORMAL, dimensionsKey, false},
    };
    const auto provider = Create<IColumnProvider>(columnProviderClass, IID_IColumnProvider);
    for (const auto& each : cases) {
        EXPECT_EQ(each.served ? (Answer{S_OK, {}, L"bstr:640 x 480"}) : Answer{S_FALSE},
                  AskColumn(*provider.Get(), each.path, each.extension, each.attributes, each.column))
            << &each - cases;
    }
    SHCOLUMNDATA item{};
    VARIANT value{};
    EXPECT_EQ(E_POINTER, provider->GetItemData(nullptr, &item, &value));
    EXPECT_EQ(E_POINTER, provider->GetItemData(&dimensionsKey, nullptr, &value));
    EXPECT_EQ(E_POINTER, provider->GetItemData(&dimensionsKey, &item, nullptr));
}

} // namespace
} // namespace vantrel::tests
