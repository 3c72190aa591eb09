#include "module/ClassTable.h"

#include "render/ThumbnailProvider.h"

namespace vantrel {

namespace {

constexpr ClassRow ClassTable[] = {
    {&thumbnailProviderClassId, CreateObject<ThumbnailProvider>},
};

} // namespace

const ClassRow* FindClass(REFCLSID classId) {
    for (const ClassRow& row : ClassTable) {
        if (IsEqualCLSID(*row.classId, classId))
            return &row;
    }
    return nullptr;
}

} // namespace vantrel
