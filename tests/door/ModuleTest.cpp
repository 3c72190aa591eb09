#include "support/IColumnProvider.h"
#include "tests/host/ImportHook.h"
#include "tests/host/TheDll.h"

#include <propsys.h>
#include <shlguid.h>
#include <shlobj.h>
#include <thumbcache.h>

#include <set>

namespace vantrel::tests {
namespace {

struct ClassCase {
    CLSID classId;
    std::vector<IID> interfaces; // the first one has IUnknown's identity
};

const ClassCase classes[] = {
    {thumbnailProviderClass, {IID_IInitializeWithStream, __uuidof(IThumbnailProvider)}},
    {extractImageClass, {IID_IExtractImage2, IID_IExtractImage, IID_IPersistFile}},
    {iconHandlerClass, {IID_IExtractIconW, IID_IPersistFile, IID_IColumnProvider}},
    {columnProviderClass, {IID_IColumnProvider}},
    {propertyStoreClass, {IID_IInitializeWithStream, IID_IPropertyStore, IID_IPropertyStoreCapabilities}},
};

TEST(Module, ImportsSystemLibrariesOnly) {
    const std::set<std::string> system = {"KERNEL32.dll", "USER32.dll",   "GDI32.dll",   "ADVAPI32.dll",
                                          "ole32.dll",    "OLEAUT32.dll", "SHELL32.dll", "msvcrt.dll"};
    std::set<std::string> imported;
    VisitImports(TheDll(), [&](const char* library, const char*, void**) {
        imported.insert(library);
        return false;
    });
    EXPECT_FALSE(imported.empty());
    for (const std::string& library : imported)
        EXPECT_TRUE(system.contains(library)) << library;
}

// All four are called by name.
TEST(Module, ExportsNoMoreThanTheFourEntryPoints) {
    unsigned count = 0;
    for (WORD number = 0xFFFF; number > 0; --number)
        count += GetProcAddress(TheDll(), MAKEINTRESOURCEA(number)) ? 1 : 0;
    EXPECT_EQ(4u, count);
}

TEST(Module, RefusesWhatItDoesNotServe) {
    void* object = &object;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, GetClassObject(IID_IUnknown, IID_IClassFactory, &object));
    EXPECT_EQ(nullptr, object);
    object = &object;
    EXPECT_EQ(E_NOINTERFACE, GetClassObject(thumbnailProviderClass, IID_IStream, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_POINTER, GetClassObject(thumbnailProviderClass, IID_IClassFactory, nullptr));
    EXPECT_EQ(S_OK, CallExport("DllCanUnloadNow"));
}

TEST(Module, CountsFactoriesAndLocksButNoObjects) {
    ComPtr<IClassFactory> first;
    ComPtr<IClassFactory> second;
    ASSERT_EQ(S_OK, GetClassObject(thumbnailProviderClass, IID_IUnknown, &first));
    ASSERT_EQ(S_OK, GetClassObject(thumbnailProviderClass, IID_IClassFactory, &second));
    EXPECT_NE(first.Get(), second.Get());
    second.Reset();
    EXPECT_EQ(S_FALSE, CallExport("DllCanUnloadNow"));

    ComPtr<IUnknown> object;
    EXPECT_EQ(S_OK, first->CreateInstance(nullptr, IID_IUnknown, &object));
    EXPECT_EQ(S_OK, first->LockServer(TRUE));
    EXPECT_EQ(S_OK, first->LockServer(7));
    EXPECT_EQ(S_OK, first->LockServer(FALSE));
    ComPtr<IClassFactory> last = std::move(first);
    EXPECT_EQ(S_OK, last->LockServer(FALSE));
    EXPECT_EQ(S_FALSE, CallExport("DllCanUnloadNow"));
    EXPECT_EQ(S_OK, last->LockServer(FALSE)); // one too many: below zero once the factory is gone
    EXPECT_EQ(S_OK, CallExport("DllCanUnloadNow"));
    last.Reset();
    EXPECT_EQ(S_FALSE, CallExport("DllCanUnloadNow"));
    ASSERT_EQ(S_OK, GetClassObject(thumbnailProviderClass, IID_IClassFactory, &last));
    EXPECT_EQ(S_OK, last->LockServer(TRUE));
    last.Reset();
    EXPECT_EQ(S_OK, CallExport("DllCanUnloadNow")) << "a living object must not count";
}

TEST(Module, ServesEachClassWithItsInterfacesAndNoOthers) {
    for (const ClassCase& each : classes) {
        SCOPED_TRACE(&each - classes);
        const ComPtr<IUnknown> object = Create<IUnknown>(each.classId, IID_IUnknown);
        ASSERT_TRUE(object);
        std::vector<IID> all = {IID_IPersistStream, IID_IInitializeWithFile, IID_IClassFactory};
        for (const ClassCase& other : classes)
            all.insert(all.end(), other.interfaces.begin(), other.interfaces.end());
        for (const IID& iid : all) {
            const bool own =
                std::find(each.interfaces.begin(), each.interfaces.end(), iid) != each.interfaces.end();
            ComPtr<IUnknown> answer;
            EXPECT_EQ(own ? S_OK : E_NOINTERFACE, object->QueryInterface(iid, &answer));
            EXPECT_EQ(E_POINTER, object->QueryInterface(iid, nullptr));
            EXPECT_EQ(own, answer != nullptr);
            // The same identity from every interface.
            EXPECT_TRUE(!own || Ask<IUnknown>(answer.Get(), IID_IUnknown) == object);
        }
        const IUnknown* const primary = Ask<IUnknown>(object.Get(), each.interfaces[0]).Get();
        EXPECT_EQ(object.Get(), primary);
        // The icon handler returns its icon interface for the column provider's identifier.
        EXPECT_TRUE(!IsEqualCLSID(each.classId, iconHandlerClass) ||
                    Ask<IUnknown>(object.Get(), IID_IColumnProvider).Get() == primary);
        EXPECT_EQ(2u, object->AddRef());
        EXPECT_EQ(1u, object->Release());

        ComPtr<IClassFactory> factory;
        ASSERT_EQ(S_OK, GetClassObject(each.classId, IID_IClassFactory, &factory));
        void* answer = &answer;
        EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(object.Get(), IID_IUnknown, &answer));
        EXPECT_EQ(&answer, answer) << "refused aggregation leaves the output alone";
        EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IPersistStream, &answer));
        EXPECT_EQ(nullptr, answer);
    }
}

} // namespace
} // namespace vantrel::tests
