#include "benchmarks/Library.h"

#include "benchmarks/Measurement.h"
#include "tools/terminal/ComPtr.h"

#include <oleauto.h>
#include <propsys.h>
#include <shlobj.h>
#include <thumbcache.h>

#include <cwchar>
#include <stdexcept>
#include <string>

namespace vantrel::bench {

namespace {

using tools::ComPtr;

constexpr wchar_t thumbnailProviderId[] = L"{E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F}";
constexpr wchar_t extractImageHandlerId[] = L"{C46E1B3A-92F7-4d05-A1E8-7B3D5F92C0A6}";
constexpr wchar_t iconHandlerId[] = L"{5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27}";
constexpr wchar_t columnProviderId[] = L"{A8D4E2F1-37C9-4b6a-8E05-91F2C6D7A3B4}";
constexpr wchar_t propertyStoreId[] = L"{3F1C9A42-6B0D-4e57-9A21-5C8E7D40B613}";

constexpr PROPERTYKEY titleKey = {
    {0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}}, 2};
constexpr GUID imageFormatId = {0x6444048F, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
constexpr PROPERTYKEY dimensionsKey = {imageFormatId, 13};
constexpr PROPERTYKEY bitDepthKey = {imageFormatId, 7};

void Check(HRESULT result, const char* what) {
    if (result != S_OK)
        throw std::runtime_error(std::string(what) + " failed");
}

std::uint64_t g_fileBytes;

BOOL WINAPI CountingReadFile(HANDLE file, void* buffer, DWORD count, DWORD* done, OVERLAPPED* overlapped) {
    const BOOL read = ReadFile(file, buffer, count, done, overlapped);
    g_fileBytes += *done;
    return read;
}

// Where a module keeps the address of a function that it imports.
void** ImportSlot(HMODULE module, void* function) {
    auto* const image = reinterpret_cast<std::uint8_t*>(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(image + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IAT];
    auto* const slots = reinterpret_cast<void**>(image + table.VirtualAddress);
    for (std::size_t i = 0; i < table.Size / sizeof(void*); ++i) {
        if (slots[i] == function)
            return slots + i;
    }
    throw std::runtime_error("the library imports no ReadFile");
}

void Redirect(void** slot, void* function) {
    DWORD protection;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
    *slot = function;
    VirtualProtect(slot, sizeof *slot, protection, &protection);
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

void Library::Create(const wchar_t* classId, REFIID iid, void** object) const {
    CLSID id;
    Check(CLSIDFromString(classId, &id), "CLSIDFromString");
    ComPtr<IClassFactory> factory;
    Check(getClassObject_(id, IID_IClassFactory, factory.PutVoid()), "DllGetClassObject");
    Check(factory->CreateInstance(nullptr, iid, object), "CreateInstance");
}

UniqueBitmap Library::Thumbnail(IStream& stream, unsigned edge) const {
    ComPtr<IInitializeWithStream> initialize;
    Create(thumbnailProviderId, __uuidof(IInitializeWithStream), initialize.PutVoid());
    Check(initialize->Initialize(&stream, STGM_READ), "Initialize");
    ComPtr<IThumbnailProvider> provider;
    Check(initialize->QueryInterface(__uuidof(IThumbnailProvider), provider.PutVoid()), "QueryInterface");
    HBITMAP bitmap = nullptr;
    WTS_ALPHATYPE alphaType;
    Check(provider->GetThumbnail(edge, &bitmap, &alphaType), "GetThumbnail");
    return UniqueBitmap(bitmap);
}

UniqueBitmap Library::Extract(const wchar_t* path, unsigned edge) const {
    ComPtr<IPersistFile> file;
    Create(extractImageHandlerId, IID_IPersistFile, file.PutVoid());
    Check(file->Load(path, STGM_READ), "Load");
    ComPtr<IExtractImage> extract;
    Check(file->QueryInterface(IID_IExtractImage, extract.PutVoid()), "QueryInterface");
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
    Create(iconHandlerId, IID_IPersistFile, file.PutVoid());
    Check(file->Load(path, STGM_READ), "Load");
    ComPtr<IExtractIconW> extract;
    Check(file->QueryInterface(IID_IExtractIconW, extract.PutVoid()), "QueryInterface");
    HICON largeIcon = nullptr;
    HICON smallIcon = nullptr;
    Check(extract->Extract(path, 0, &largeIcon, &smallIcon, MAKELONG(32, 16)), "Extract");
    DestroyIcon(largeIcon);
    DestroyIcon(smallIcon);
}

void Library::Properties(IStream& stream) const {
    ComPtr<IInitializeWithStream> initialize;
    Create(propertyStoreId, __uuidof(IInitializeWithStream), initialize.PutVoid());
    Check(initialize->Initialize(&stream, STGM_READ), "Initialize");
    ComPtr<IPropertyStore> store;
    Check(initialize->QueryInterface(__uuidof(IPropertyStore), store.PutVoid()), "QueryInterface");
    for (const PROPERTYKEY& key : {titleKey, dimensionsKey, bitDepthKey}) {
        PROPVARIANT value;
        Check(store->GetValue(key, &value), "GetValue");
        PropVariantClear(&value);
    }
}

void Library::Column(const wchar_t* path) const {
    ComPtr<IColumnProvider> provider;
    Create(columnProviderId, IID_IColumnProvider, provider.PutVoid());
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
    void* const original =
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "ReadFile"));
    void** const slot = ImportSlot(module_.get(), original);
    g_fileBytes = 0;
    Redirect(slot, reinterpret_cast<void*>(CountingReadFile));
    request();
    Redirect(slot, original);
    return g_fileBytes;
}

double Library::LoadTime(const std::filesystem::path& path) {
    std::vector<double> times;
    for (int i = 0; i < 25; ++i) {
        times.push_back(Milliseconds([&] { const Library loaded(path); }));
    }
    return Median(std::move(times));
}

} // namespace vantrel::bench
