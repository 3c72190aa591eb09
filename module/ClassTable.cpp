#include "module/ClassTable.h"

#include "properties/ZmiColumnProvider.h"
#include "properties/ZmiPropertyStore.h"
#include "render/ExtractImageHandler.h"
#include "render/IconHandler.h"
#include "render/ThumbnailProvider.h"
#include "support/RegistrationTable.h"

#include <cstdint>

namespace vantrel {

namespace {

constexpr std::uint32_t ParseHex(const wchar_t* digits, unsigned count) {
    std::uint32_t value = 0;
    for (unsigned i = 0; i < count; ++i) {
        const wchar_t digit = digits[i];
        value = value << 4 | static_cast<std::uint32_t>(digit <= L'9'   ? digit - L'0'
                                                        : digit <= L'F' ? digit - L'A' + 10
                                                                        : digit - L'a' + 10);
    }
    return value;
}

// "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}"
consteval CLSID ParseClassId(const wchar_t (&text)[39]) {
    CLSID id{};
    id.Data1 = ParseHex(text + 1, 8);
    id.Data2 = static_cast<std::uint16_t>(ParseHex(text + 10, 4));
    id.Data3 = static_cast<std::uint16_t>(ParseHex(text + 15, 4));
    for (std::size_t i = 0; i < 8; ++i)
        id.Data4[i] = static_cast<std::uint8_t>(ParseHex(text + (i < 2 ? 20 : 21) + 2 * i, 2));
    return id;
}

struct ClassRow {
    CLSID classId;
    CreateInstanceFn create;
};

constexpr ClassRow ClassTable[] = {
    {ParseClassId(thumbnailProviderId), CreateObject<ThumbnailProvider>},
    {ParseClassId(extractImageHandlerId), CreateObject<ExtractImageHandler>},
    {ParseClassId(iconHandlerId), CreateObject<IconHandler>},
    {ParseClassId(columnProviderId), CreateObject<ZmiColumnProvider>},
    {ParseClassId(propertyStoreId), CreateObject<ZmiPropertyStore>},
};

} // namespace

CreateInstanceFn FindCreator(REFCLSID classId) {
    for (const ClassRow& row : ClassTable) {
        if (IsEqualCLSID(row.classId, classId))
            return row.create;
    }
    return nullptr;
}

} // namespace vantrel
