#include "tools/preview/ColumnHost.h"

#include "support/IColumnProvider.h"
#include "tools/preview/PropertyName.h"

#include <shlobj.h>

#include <algorithm>

namespace vantrel::tools {

namespace {

// False when the path does not fit, as the structures of this old interface hold no longer one.
bool Store(const std::wstring& path, wchar_t (&target)[MAX_PATH]) {
    if (path.size() >= MAX_PATH)
        return false;
    std::copy(path.begin(), path.end(), target);
    return true;
}

} // namespace

void ColumnHost::Ask(const InputFile& file, std::vector<HandlerResult>& results) {
    Attempt(results, L"dimensions", [&](HandlerResult& result) {
        const auto provider = Create<IColumnProvider>(file);
        SHCOLUMNINIT folder{};
        SHCOLUMNDATA item{};
        std::wstring extension = file.path.extension().wstring();
        item.pwszExt = extension.data();
        item.dwFileAttributes = GetFileAttributesW(file.path.c_str());
        if (!Store(file.path.parent_path().wstring(), folder.wszFolder) ||
            !Store(file.path.wstring(), item.wszFile)) {
            result.text = L"not asked, as a column request holds no path of more than 259 characters";
            return;
        }
        Check(provider->Initialize(&folder), L"Initialize");

        SHCOLUMNINFO column{};
        Check(provider->GetColumnInfo(0, &column), L"GetColumnInfo");
        result.request = PropertyName(column.scid);
        // PROPVARIANT begins as VARIANT does, and what a column delivers is a string in both.
        PROPVARIANT value;
        PropVariantInit(&value);
        Check(provider->GetItemData(&column.scid, &item, reinterpret_cast<VARIANT*>(&value)), L"GetItemData");
        result.text = TakeText(value);
    });
}

} // namespace vantrel::tools
