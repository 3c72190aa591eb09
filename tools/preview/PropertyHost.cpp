#include "tools/preview/PropertyHost.h"

#include "tools/preview/FileStream.h"
#include "tools/preview/PropertyName.h"

#include <propsys.h>

namespace vantrel::tools {

using Microsoft::WRL::ComPtr;

void PropertyHost::Ask(const InputFile& file, std::vector<HandlerResult>& results) {
    ComPtr<IPropertyStore> store;
    DWORD count = 0;
    try {
        const auto initialiser = Create<IInitializeWithStream>(file);
        Check(initialiser->Initialize(OpenStream(file).Get(), STGM_READ), L"Initialize");
        Check(initialiser.As(&store), L"IPropertyStore");
        Check(store->GetCount(&count), L"GetCount");
    } catch (const Failure& failure) {
        Attempt(results, L"all", [&](HandlerResult&) { throw failure; });
        return;
    }
    for (DWORD i = 0; i < count; ++i) {
        PROPERTYKEY key{};
        const HRESULT named = store->GetAt(i, &key);
        Attempt(results, PropertyName(key), [&](HandlerResult& result) {
            Check(named, L"GetAt");
            PROPVARIANT value;
            PropVariantInit(&value);
            Check(store->GetValue(key, &value), L"GetValue");
            result.text = TakeText(value);
        });
    }
}

} // namespace vantrel::tools
