// The shipped library as a host sees it: loaded from the test program's folder, its exports, its objects.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <objbase.h>
#include <wrl/client.h>

#include <string>

namespace vantrel::tests {

using Microsoft::WRL::ComPtr;

inline constexpr CLSID thumbnailProviderClass = {
    0xE1A95D7C, 0x0B48, 0x4C63, {0x9F, 0x1D, 0x2A, 0x6B, 0x8C, 0x04, 0xE7, 0x9F}};
inline constexpr CLSID extractImageClass = {
    0xC46E1B3A, 0x92F7, 0x4D05, {0xA1, 0xE8, 0x7B, 0x3D, 0x5F, 0x92, 0xC0, 0xA6}};
inline constexpr CLSID iconHandlerClass = {
    0x5B27C0E9, 0xD4A1, 0x4F38, {0xB6, 0xC2, 0x0E, 0x9A, 0x81, 0xF4, 0x5D, 0x27}};
inline constexpr CLSID columnProviderClass = {
    0xA8D4E2F1, 0x37C9, 0x4B6A, {0x8E, 0x05, 0x91, 0xF2, 0xC6, 0xD7, 0xA3, 0xB4}};
inline constexpr CLSID propertyStoreClass = {
    0x3F1C9A42, 0x6B0D, 0x4E57, {0x9A, 0x21, 0x5C, 0x8E, 0x7D, 0x40, 0xB6, 0x13}};

inline std::wstring DllPath() {
    wchar_t path[MAX_PATH];
    std::wstring folder(path, GetModuleFileNameW(nullptr, path, MAX_PATH));
    return folder.substr(0, folder.rfind(L'\\') + 1) + L"Vantrel64.dll";
}

// Loaded once for the whole program.
inline HMODULE TheDll() {
    static const HMODULE module = LoadLibraryW(DllPath().c_str());
    return module;
}

template <class Function>
Function Export(const char* name, HMODULE module = TheDll()) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

inline HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** object, HMODULE module = TheDll()) {
    return Export<LPFNGETCLASSOBJECT>("DllGetClassObject", module)(classId, iid, object);
}

inline HRESULT CallExport(const char* name) {
    return Export<HRESULT(STDAPICALLTYPE*)()>(name)();
}

// Null, and a failure of the running test, if any step fails.
template <class Interface>
ComPtr<Interface> Create(REFCLSID classId, REFIID iid, HMODULE module = TheDll()) {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(S_OK, GetClassObject(classId, IID_IClassFactory, &factory, module));
    ComPtr<Interface> object;
    EXPECT_EQ(S_OK, factory ? factory->CreateInstance(nullptr, iid, &object) : E_POINTER);
    return object;
}

// A second interface of an object.
template <class Interface>
ComPtr<Interface> Ask(IUnknown* object, REFIID iid) {
    ComPtr<Interface> other;
    EXPECT_EQ(S_OK, object ? object->QueryInterface(iid, &other) : E_POINTER);
    return other;
}

} // namespace vantrel::tests
