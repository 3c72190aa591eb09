#include "tools/preview/hosts/Hosts.h"

#include "support/IColumnProvider.h"
#include "tools/terminal/ComApartment.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/NumberText.h"

#include <propsys.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <thumbcache.h>

#include <array>
#include <cwchar>
#include <iterator>
#include <thread>
#include <utility>

namespace vantrel::tools {

using Microsoft::WRL::ComPtr;

namespace {

constexpr GUID imageFormat = {0x6444048F, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
constexpr GUID summaryFormat = {0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}};

constexpr std::pair<PROPERTYKEY, const wchar_t*> namedProperties[] = {
    {{summaryFormat, 2}, L"title"},
    {{imageFormat, 13}, L"dimensions"},
    {{imageFormat, 7}, L"bit depth"},
};

using Results = std::vector<HandlerResult>;

// Runs one request and turns a Failure into its result.
template <class Ask>
void Attempt(Results& results, HandlerKind handler, std::wstring request, Ask ask) {
    HandlerResult& result = results.emplace_back(HandlerResult{handler, std::move(request)});
    try {
        ask(result);
        result.ok = true;
    } catch (const Failure& failure) {
        result.text = failure.Message();
        result.code = failure.Result();
    }
}

ComPtr<IInitializeWithStream> CreateOverStream(HandlerRegistry& registry, HandlerKind kind,
                                               const InputFile& file) {
    auto handler = registry.Create<IInitializeWithStream>(kind, file.path);
    ComPtr<IStream> stream;
    Check(SHCreateStreamOnFileEx(file.path.c_str(), STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr,
                                 stream.GetAddressOf()),
          L"opening the file");
    Check(handler->Initialize(stream.Get(), STGM_READ), L"Initialize");
    return handler;
}

template <class Interface>
ComPtr<Interface> CreateOverPath(HandlerRegistry& registry, HandlerKind kind, const InputFile& file) {
    auto handler = registry.Create<Interface>(kind, file.path);
    ComPtr<IPersistFile> persist;
    Check(handler.As(&persist), L"IPersistFile");
    Check(persist->Load(file.path.c_str(), STGM_READ), L"Load");
    return handler;
}

// A short name for the properties that ZMI handlers serve, "{format} number" for any other. Not
// PSGetNameFromPropertyKey, which ends the process under Wine.
std::wstring PropertyName(const PROPERTYKEY& key) {
    for (const auto& [known, name] : namedProperties)
        if (known.pid == key.pid && IsEqualGUID(known.fmtid, key.fmtid))
            return name;
    std::array<wchar_t, 40> format{};
    StringFromGUID2(key.fmtid, format.data(), static_cast<int>(format.size()));
    return std::wstring(format.data()) + L" " + std::to_wstring(key.pid);
}

// Stores the value in the result, and clears it. Throws Failure for a type that no ZMI handler returns.
void TakeValue(PROPVARIANT& value, HandlerResult& result) {
    const UniqueHandle<PROPVARIANT*, PropVariantClear> owner(&value);
    if (value.vt == VT_BSTR)
        result.text.assign(value.bstrVal ? value.bstrVal : L"", SysStringLen(value.bstrVal));
    else if (value.vt == VT_LPWSTR)
        result.text = value.pwszVal ? value.pwszVal : L"";
    else if (value.vt == VT_I4 || value.vt == VT_UI4)
        result.text = std::to_wstring(result.number.emplace(value.ulVal));
    else
        throw Failure(L"a value of unexpected type " + std::to_wstring(value.vt), DISP_E_TYPEMISMATCH);
}

void TakeResult(Picture picture, std::wstring pngSuffix, HandlerResult& result) {
    result.text = SizeText(picture.width, picture.height);
    result.picture = std::move(picture);
    result.pngSuffix = std::move(pngSuffix);
}

// As old hosts did it: the raw pointer goes to the second thread, and only one thread uses the object at a
// time. Marshalling it would run Extract on the first thread again, which is to be spared.
HRESULT ExtractOnSecondThread(IExtractImage& extractor, HBITMAP& bitmap) {
    HRESULT result = E_UNEXPECTED;
    std::thread([&] {
        const ComApartment apartment(COINIT_APARTMENTTHREADED);
        result = extractor.Extract(&bitmap);
    }).join();
    return result;
}

// Explorer's thumbnail: a stream in, a bitmap of at most the given edge in pixels out.
void AskForThumbnail(HandlerRegistry& registry, const InputFile& file, unsigned edge, Results& results) {
    Attempt(results, HandlerKind::Thumbnail, std::to_wstring(edge), [&](HandlerResult& result) {
        ComPtr<IThumbnailProvider> provider;
        Check(CreateOverStream(registry, HandlerKind::Thumbnail, file).As(&provider), L"IThumbnailProvider");
        HBITMAP bitmap = nullptr;
        WTS_ALPHATYPE alpha = WTSAT_UNKNOWN;
        Check(provider->GetThumbnail(edge, &bitmap, &alpha), L"GetThumbnail");
        TakeResult(TakePicture(UniqueBitmap(bitmap)), std::to_wstring(edge), result);
        result.picture.isOpaque = alpha != WTSAT_ARGB;
    });
}

// The property system: a stream in, every property of the store out.
void AskForProperties(HandlerRegistry& registry, const InputFile& file, Results& results) {
    ComPtr<IPropertyStore> store;
    DWORD count = 0;
    Attempt(results, HandlerKind::Properties, L"all", [&](HandlerResult&) {
        Check(CreateOverStream(registry, HandlerKind::Properties, file).As(&store), L"IPropertyStore");
        Check(store->GetCount(&count), L"GetCount");
    });
    if (!results.back().ok)
        return;
    results.pop_back();
    for (DWORD i = 0; i < count; ++i) {
        PROPERTYKEY key{};
        const HRESULT named = store->GetAt(i, &key);
        Attempt(results, HandlerKind::Properties, PropertyName(key), [&](HandlerResult& result) {
            Check(named, L"GetAt");
            PROPVARIANT value{};
            Check(store->GetValue(key, &value), L"GetValue");
            TakeValue(value, result);
        });
    }
}

// Older hosts: a path in, a bitmap from a second thread and the file's date out.
void AskForExtractedImage(HandlerRegistry& registry, const InputFile& file, Results& results) {
    // Not square, so that the bars around the picture are visible.
    constexpr SIZE box = {160, 120};
    ComPtr<IExtractImage2> extractor;
    Attempt(results, HandlerKind::ExtractImage, SizeText(box.cx, box.cy), [&](HandlerResult& result) {
        extractor = CreateOverPath<IExtractImage2>(registry, HandlerKind::ExtractImage, file);
        std::array<wchar_t, MAX_PATH> location{};
        DWORD priority = 0;
        DWORD flags = IEIFLAG_ASYNC | IEIFLAG_SCREEN | IEIFLAG_ASPECT;
        const HRESULT located = extractor->GetLocation(location.data(), static_cast<DWORD>(location.size()),
                                                       &priority, &box, 32, &flags);
        HBITMAP bitmap = nullptr;
        if (located == E_PENDING) {
            Check(ExtractOnSecondThread(*extractor.Get(), bitmap), L"Extract on a second thread");
        } else {
            Check(located, L"GetLocation");
            Check(extractor->Extract(&bitmap), L"Extract");
        }
        TakeResult(TakePicture(UniqueBitmap(bitmap)), L"extract", result);
        if (located == E_PENDING)
            result.text += L", from a second thread";
    });
    if (!extractor)
        return;
    Attempt(results, HandlerKind::ExtractImage, L"date", [&](HandlerResult& result) {
        FILETIME time{};
        Check(extractor->GetDateStamp(&time), L"GetDateStamp");
        SYSTEMTIME parts{};
        FileTimeToSystemTime(&time, &parts);
        std::array<wchar_t, 40> text{};
        std::swprintf(text.data(), text.size(), L"%04u-%02u-%02uT%02u:%02u:%02uZ", parts.wYear, parts.wMonth,
                      parts.wDay, parts.wHour, parts.wMinute, parts.wSecond);
        result.isoTime = text.data();
        result.text = result.isoTime.substr(0, 10) + L" " + result.isoTime.substr(11, 8) + L" UTC";
    });
}

// Explorer's icons: a path in, both icons out of one request.
void AskForIcons(HandlerRegistry& registry, const InputFile& file, Results& results) {
    HICON largeIcon = nullptr;
    HICON smallIcon = nullptr;
    Failure fault(L"Extract gave no icon");
    try {
        const auto extractor = CreateOverPath<IExtractIconW>(registry, HandlerKind::Icon, file);
        std::array<wchar_t, MAX_PATH> iconFile{};
        int index = 0;
        UINT flags = 0;
        Check(extractor->GetIconLocation(GIL_FORSHELL, iconFile.data(), static_cast<UINT>(iconFile.size()),
                                         &index, &flags),
              L"GetIconLocation");
        if ((flags & GIL_NOTFILENAME) == 0)
            throw Failure(L"the handler names the icon file " + std::wstring(iconFile.data()) +
                          L" instead of drawing the picture");
        Check(extractor->Extract(L"", 0, &largeIcon, &smallIcon, MAKELONG(largeIconEdge, smallIconEdge)),
              L"Extract");
    } catch (const Failure& failure) {
        fault = failure; // the large icon may still exist
    }
    const auto take = [&](unsigned edge, UniqueIcon icon) {
        Attempt(results, HandlerKind::Icon, std::to_wstring(edge), [&](HandlerResult& result) {
            if (!icon)
                throw fault;
            TakeResult(TakePicture(std::move(icon)), L"icon-" + std::to_wstring(edge), result);
            result.text += L", with alpha";
        });
    };
    take(largeIconEdge, UniqueIcon(largeIcon));
    take(smallIconEdge, UniqueIcon(smallIcon));
}

// A detail view's column: the file's path and attributes in, the value out.
void AskForColumn(HandlerRegistry& registry, const InputFile& file, Results& results) {
    Attempt(results, HandlerKind::Column, L"dimensions", [&](HandlerResult& result) {
        const auto provider = registry.Create<IColumnProvider>(HandlerKind::Column, file.path);
        SHCOLUMNINIT folder{};
        SHCOLUMNDATA item{};
        std::wstring extension = file.path.extension().wstring();
        item.pwszExt = extension.data();
        item.dwFileAttributes = GetFileAttributesW(file.path.c_str());
        const std::wstring path = file.path.wstring();
        if (path.size() >= std::size(item.wszFile)) {
            result.text = L"not asked, since a column request can't hold a path longer than 259 characters";
            return;
        }
        path.copy(item.wszFile, path.size());
        file.path.parent_path().wstring().copy(folder.wszFolder, path.size());
        Check(provider->Initialize(&folder), L"Initialize");

        SHCOLUMNINFO column{};
        Check(provider->GetColumnInfo(0, &column), L"GetColumnInfo");
        result.request = PropertyName(column.scid);
        // PROPVARIANT has the same layout as VARIANT for the strings that columns return.
        PROPVARIANT value{};
        Check(provider->GetItemData(&column.scid, &item, reinterpret_cast<VARIANT*>(&value)), L"GetItemData");
        TakeValue(value, result);
    });
}

} // namespace

std::vector<HandlerResult> AskHosts(HandlerRegistry& registry, const InputFile& file,
                                    const ThumbnailSizes& sizes) {
    Results results;
    for (const unsigned edge : sizes.edges)
        AskForThumbnail(registry, file, edge, results);
    if (sizes.forSheetAlone) {
        AskForThumbnail(registry, file, *sizes.forSheetAlone, results);
        results.back().pngSuffix.clear();
    }
    AskForProperties(registry, file, results);
    AskForExtractedImage(registry, file, results);
    AskForIcons(registry, file, results);
    AskForColumn(registry, file, results);
    return results;
}

} // namespace vantrel::tools
