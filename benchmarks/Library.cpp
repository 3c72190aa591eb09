#include "benchmarks/Library.h"

#include "benchmarks/Measurement.h"
#include "support/IColumnProvider.h"
#include "tests/host/ImportHook.h"

#include <oleauto.h>
#include <propsys.h>
#include <shlobj.h>
#include <thumbcache.h>
#include <wrl/client.h>

#include <cwchar>
#include <stdexcept>
#include <string>

namespace vantrel::bench {

namespace {

using Microsoft::WRL::ComPtr;

constexpr CLSID thumbnailProviderId = {
    0xE1A95D7C, 0x0B48, 0x4C63, {0x9F, 0x1D, 0x2A, 0x6B, 0x8C, 0x04, 0xE7, 0x9F}};
constexpr CLSID extractImageHandlerId = {
    0xC46E1B3A, 0x92F7, 0x4D05, {0xA1, 0xE8, 0x7B, 0x3D, 0x5F, 0x92, 0xC0, 0xA6}};
constexpr CLSID iconHandlerId = {
    0x5B27C0E9, 0xD4A1, 0x4F38, {0xB6, 0xC2, 0x0E, 0x9A, 0x81, 0xF4, 0x5D, 0x27}};
constexpr CLSID columnProviderId = {
    0xA8D4E2F1, 0x37C9, 0x4B6A, {0x8E, 0x05, 0x91, 0xF2, 0xC6, 0xD7, 0xA3, 0xB4}};
constexpr CLSID propertyStoreId = {
    0x3F1C9A42, 0x6B0D, 0x4E57, {0x9A, 0x21, 0x5C, 0x8E, 0x7D, 0x40, 0xB6, 0x13}};

constexpr PROPERTYKEY titleKey = {
    {0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}}, 2};
constexpr GUID imageFormatId = {0x6444048F, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
constexpr PROPERTYKEY dimensionsKey = {imageFormatId, 13};
constexpr PROPERTYKEY bitDepthKey = {imageFormatId, 7};

void Check(HRESULT result, const char* what) {
    if (result != S_OK)
        throw std::runtime_error(std::string(what) + " failed");
}

} // namespace

Library::Library(const std::filesystem::path& path) : module_(LoadLibraryW(path.c_str())) {
    if (!module_)
        throw std::runtime_error("cannot load " + path.string());
    getClassObject_ = reinterpret_cast<LPFNGETCLASSOBJECT>(
        reinterpret_cast<void*>(GetProcAddress(module_.get(), "DllGetClassObject")));
    if (!getClassObject_)
        throw std::runtime_error("no DllGetClassObject in " + path.string());
}

void Library::Create(REFCLSID classId, REFIID iid, void** object) const {
    ComPtr<IClassFactory> factory;
    Check(getClassObject_(classId, IID_PPV_ARGS(factory.GetAddressOf())), "DllGetClassObject");
    Check(factory->CreateInstance(nullptr, iid, object), "CreateInstance");
}

UniqueBitmap Library::Thumbnail(IStream& stream, unsigned edge) const {
    ComPtr<IInitializeWithStream> initialize;
    Create(thumbnailProviderId, IID_PPV_ARGS(initialize.GetAddressOf()));
    Check(initialize->Initialize(&stream, STGM_READ), "Initialize");
    ComPtr<IThumbnailProvider> provider;
    Check(initialize->QueryInterface(IID_PPV_ARGS(provider.GetAddressOf())), "QueryInterface");
    HBITMAP bitmap = nullptr;
    WTS_ALPHATYPE alphaType;
    Check(provider->GetThumbnail(edge, &bitmap, &alphaType), "GetThumbnail");
    return UniqueBitmap(bitmap);
}

UniqueBitmap Library::Extract(const wchar_t* path, unsigned edge) const {
    ComPtr<IPersistFile> file;
    Create(extractImageHandlerId, IID_PPV_ARGS(file.GetAddressOf()));
    Check(file->Load(path, STGM_READ), "Load");
    ComPtr<IExtractImage> extract;
    Check(file->QueryInterface(IID_PPV_ARGS(extract.GetAddressOf())), "QueryInterface");
    const SIZE size{static_cast<LONG>(edge), static_cast<LONG>(edge)};
    wchar_t name[MAX_PATH];
    DWORD priority = 0;
    DWORD flags = 0;
    Check(extract->GetLocation(name, MAX_PATH, &priority, &size, 32, &flags), "GetLocation");
    HBITMAP bitmap = nullptr;
    Check(extract->Extract(&bitmap), "Extract");
    return UniqueBitmap(bitmap);
}

void Library::IconPair(const wchar_t* path) const {
    ComPtr<IPersistFile> file;
    Create(iconHandlerId, IID_PPV_ARGS(file.GetAddressOf()));
    Check(file->Load(path, STGM_READ), "Load");
    ComPtr<IExtractIconW> extract;
    Check(file->QueryInterface(IID_IExtractIconW, reinterpret_cast<void**>(extract.GetAddressOf())),
          "QueryInterface");
    HICON largeIcon = nullptr;
    HICON smallIcon = nullptr;
    Check(extract->Extract(path, 0, &largeIcon, &smallIcon, MAKELONG(32, 16)), "Extract");
    const UniqueIcon ownsLarge(largeIcon);
    const UniqueIcon ownsSmall(smallIcon);
}

void Library::Properties(IStream& stream) const {
    ComPtr<IInitializeWithStream> initialize;
    Create(propertyStoreId, IID_PPV_ARGS(initialize.GetAddressOf()));
    Check(initialize->Initialize(&stream, STGM_READ), "Initialize");
    ComPtr<IPropertyStore> store;
    Check(initialize->QueryInterface(IID_PPV_ARGS(store.GetAddressOf())), "QueryInterface");
    for (const PROPERTYKEY& key : {titleKey, dimensionsKey, bitDepthKey}) {
        PROPVARIANT value;
        Check(store->GetValue(key, &value), "GetValue");
        PropVariantClear(&value);
    }
}

void Library::Column(const wchar_t* path) const {
    ComPtr<IColumnProvider> provider;
    Create(columnProviderId, IID_IColumnProvider, reinterpret_cast<void**>(provider.GetAddressOf()));
    SHCOLUMNDATA item{};
    wchar_t extension[] = L".zmi";
    item.pwszExt = extension;
    std::wcsncpy(item.wszFile, path, MAX_PATH - 1);
    const SHCOLUMNID column = dimensionsKey;
    VARIANT value;
    Check(provider->GetItemData(&column, &item, &value), "GetItemData");
    VariantClear(&value);
}

std::uint64_t Library::CountFileBytes(const std::function<void()>& request) const {
    std::uint64_t bytes = 0;
    const tests::ImportHook<"ReadFile", BOOL(HANDLE, void*, DWORD, DWORD*, OVERLAPPED*)> hook(
        module_.get(),
        [&](auto original, HANDLE file, void* buffer, DWORD count, DWORD* done, auto overlapped) {
            const BOOL read = original(file, buffer, count, done, overlapped);
            bytes += *done;
            return read;
        });
    request();
    if (bytes == 0)
        throw std::runtime_error("the library does not import ReadFile");
    return bytes;
}

double Library::LoadTime(const std::filesystem::path& path) {
    std::vector<double> times;
    for (int i = 0; i < 25; ++i) {
        times.push_back(Milliseconds([&] { const Library loaded(path); }));
    }
    return Median(std::move(times));
}

} // namespace vantrel::bench
