#include "tests/host/Requests.h"

#include "tests/host/TestStream.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace vantrel::tests {

namespace {

// The value of an output until it is written to.
template <class Handle>
Handle Untouched() {
    return reinterpret_cast<Handle>(std::uintptr_t{0x1234});
}

Answer FromBitmap(HRESULT result, HBITMAP bitmap) {
    Answer answer{result};
    if (result == S_OK) {
        EXPECT_NE(Untouched<HBITMAP>(), bitmap);
        answer.pictures.push_back(ReadPicture(UniqueBitmap(bitmap).get()));
        EXPECT_NE(0u, answer.pictures[0].width);
    } else {
        EXPECT_EQ(Untouched<HBITMAP>(), bitmap);
    }
    return answer;
}

// A value that no call returns, to detect outputs that were left alone.
VARIANT UntouchedVariant() {
    VARIANT value;
    std::memset(&value, 0x5A, sizeof value);
    return value;
}

Answer FromVariant(HRESULT result, VARIANT& value) {
    Answer answer{result};
    if (result != S_OK) {
        const VARIANT untouched = UntouchedVariant();
        EXPECT_EQ(0, std::memcmp(&untouched, &value, sizeof value));
    } else if (V_VT(&value) == VT_I4) {
        answer.text = L"i4:" + std::to_wstring(V_I4(&value));
    } else if (V_VT(&value) == VT_BSTR) {
        const BSTR text = V_BSTR(&value);
        answer.text = text ? L"bstr:" + std::wstring(text, SysStringLen(text)) : L"bstr null";
        SysFreeString(text);
    } else {
        ADD_FAILURE() << "value of type " << V_VT(&value);
    }
    return answer;
}

template <class Interface>
ComPtr<Interface> StreamObject(REFCLSID classId, REFIID iid, IStream& stream, HMODULE module = TheDll()) {
    const auto object = Create<IInitializeWithStream>(classId, IID_IInitializeWithStream, module);
    EXPECT_EQ(S_OK, object->Initialize(&stream, STGM_READ));
    return Ask<Interface>(object.Get(), iid);
}

template <class Interface>
ComPtr<Interface> PathObject(REFCLSID classId, REFIID iid, const wchar_t* path) {
    const auto object = Create<IPersistFile>(classId, IID_IPersistFile);
    EXPECT_EQ(S_OK, object->Load(path, STGM_READ));
    return Ask<Interface>(object.Get(), iid);
}

} // namespace

Picture ReadIcon(HICON icon) {
    ICONINFO info{};
    EXPECT_TRUE(GetIconInfo(icon, &info));
    const UniqueBitmap mask(info.hbmMask);
    const UniqueBitmap color(info.hbmColor);
    EXPECT_TRUE(info.fIcon);
    const Picture masked = ReadPicture(mask.get());
    const Picture picture = ReadPicture(color.get());
    EXPECT_EQ(masked.width, picture.width);
    EXPECT_EQ(masked.height, picture.height);
    for (const std::uint32_t word : masked.words)
        EXPECT_EQ(0u, word & ~opaque);
    return picture;
}

Answer AskThumbnail(IThumbnailProvider& provider, UINT edge) {
    auto bitmap = Untouched<HBITMAP>();
    auto alpha = WTSAT_ARGB; // never an answer
    const HRESULT result = provider.GetThumbnail(edge, &bitmap, &alpha);
    EXPECT_EQ(result == S_OK ? WTSAT_RGB : WTSAT_ARGB, alpha);
    return FromBitmap(result, bitmap);
}

Answer AskImage(IExtractImage2& handler) {
    auto bitmap = Untouched<HBITMAP>();
    const HRESULT result = handler.Extract(&bitmap);
    return FromBitmap(result, bitmap);
}

Answer AskImage(IExtractImage2& handler, SIZE size) {
    wchar_t buffer[MAX_PATH] = L"untouched";
    DWORD priority = 77;
    DWORD flags = IEIFLAG_SCREEN;
    EXPECT_EQ(S_OK, handler.GetLocation(buffer, MAX_PATH, &priority, &size, 32, &flags));
    EXPECT_EQ(DWORD{IEIFLAG_SCREEN | IEIFLAG_REFRESH}, flags);
    EXPECT_STREQ(L"untouched", buffer);
    EXPECT_EQ(77u, priority);
    return AskImage(handler);
}

Answer AskIcons(IExtractIconW& handler, UINT largeSize, UINT smallSize) {
    HICON icons[] = {Untouched<HICON>(), Untouched<HICON>()};
    Answer answer;
    answer.result = handler.Extract(L"ignored", 5, &icons[0], &icons[1],
                                    static_cast<UINT>(MAKELONG(largeSize, smallSize)));
    for (const HICON icon : icons) {
        if (icon != Untouched<HICON>())
            answer.pictures.push_back(ReadIcon(UniqueIcon(icon).get()));
    }
    EXPECT_TRUE(answer.result != S_OK || answer.pictures.size() == 2);
    return answer;
}

Answer AskValue(IPropertyStore& store, const PROPERTYKEY& key) {
    VARIANT value = UntouchedVariant();
    const HRESULT result = store.GetValue(key, reinterpret_cast<PROPVARIANT*>(&value));
    return FromVariant(result, value);
}

Answer AskColumn(IColumnProvider& provider, const wchar_t* path, const wchar_t* extension, DWORD attributes,
                 const SHCOLUMNID& column) {
    SHCOLUMNDATA item{SHCDF_UPDATEITEM, attributes, 0, const_cast<wchar_t*>(extension), {}};
    wcsncpy(item.wszFile, path, MAX_PATH - 1);
    VARIANT value = UntouchedVariant();
    const HRESULT result = provider.GetItemData(&column, &item, &value);
    return FromVariant(result, value);
}

ComPtr<IThumbnailProvider> ThumbnailProviderOf(IStream& stream, HMODULE module) {
    return StreamObject<IThumbnailProvider>(thumbnailProviderClass, __uuidof(IThumbnailProvider), stream,
                                            module);
}

ComPtr<IPropertyStore> PropertyStoreOf(IStream& stream) {
    return StreamObject<IPropertyStore>(propertyStoreClass, IID_IPropertyStore, stream);
}

ComPtr<IExtractImage2> ImageHandlerOf(const wchar_t* path) {
    return PathObject<IExtractImage2>(extractImageClass, IID_IExtractImage2, path);
}

ComPtr<IExtractIconW> IconHandlerOf(const wchar_t* path) {
    return PathObject<IExtractIconW>(iconHandlerClass, IID_IExtractIconW, path);
}

std::vector<Request> StreamRequests(IStream& stream, UINT edge) {
    const auto provider = ThumbnailProviderOf(stream);
    const auto store = PropertyStoreOf(stream);
    return {{"thumbnail", E_FAIL, [=] { return AskThumbnail(*provider.Get(), edge); }},
            {"title", S_FALSE, [=] { return AskValue(*store.Get(), titleKey); }},
            {"dimensions", S_FALSE, [=] { return AskValue(*store.Get(), dimensionsKey); }},
            {"bit depth", S_FALSE, [=] { return AskValue(*store.Get(), bitDepthKey); }}};
}

std::vector<Request> PathRequests(const wchar_t* path, UINT edge) {
    const auto side = static_cast<LONG>(edge);
    const auto image = ImageHandlerOf(path);
    const auto icons = IconHandlerOf(path);
    const auto columns = Create<IColumnProvider>(columnProviderClass, IID_IColumnProvider);
    const std::wstring name = path;
    const auto imageIn = [=](LONG width, LONG height) {
        return [=] { return AskImage(*image.Get(), SIZE{width, height}); };
    };
    return {{"square image", E_FAIL, imageIn(side, side)},
            {"letterboxed image", E_FAIL, imageIn(side, side + 3)},
            {"icons", E_FAIL, [=] { return AskIcons(*icons.Get(), edge, edge / 2); }},
            {"column", S_FALSE, [=] { return AskColumn(*columns.Get(), name.c_str()); }}};
}

std::vector<Request> AllRequests(IStream& stream, const wchar_t* path, UINT edge) {
    std::vector<Request> requests = StreamRequests(stream, edge);
    std::ranges::move(PathRequests(path, edge), std::back_inserter(requests));
    return requests;
}

} // namespace vantrel::tests
