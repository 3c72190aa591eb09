#include "tools/preview/doctor/Registration.h"

#include "tools/preview/HandlerRegistry.h"

#include <array>

namespace vantrel::tools {

namespace {

struct PropertyList {
    const wchar_t* name;
    const wchar_t* data;
};

constexpr std::array<PropertyList, 8> propertyLists = {{
    {L"QuickTip", L"prop:Dimensions;Type;Size;Write"},
    {L"TileInfo", L"prop:Dimensions;Size"},
    {L"ContentViewModeForBrowse",
     L"prop:~System.ItemNameDisplay;System.Size;System.Title;System.Image.Dimensions;System.Image.BitDepth;"
     L"System.DateModified"},
    {L"InfoTip", L"prop:System.ItemTypeText;System.Title;System.Image.Dimensions;System.Image.BitDepth;"
                 L"System.Size;System.DateModified"},
    {L"FullDetails",
     L"prop:System.PropGroup.Description;System.Title;System.Image.Dimensions;System.Image.BitDepth;"
     L"System.PropGroup.FileSystem;System.ItemNameDisplay;System.ItemTypeText;System.ItemFolderPathDisplay;"
     L"System.Size;System.DateCreated;System.DateModified;System.FileAttributes;*System.OfflineAvailability;"
     L"*System.OfflineStatus;*System.SharedWith;*System.FileOwner;*System.ComputerName"},
    {L"PreviewDetails",
     L"prop:System.Title;System.Image.Dimensions;System.Image.BitDepth;System.DateModified;System.Size;"
     L"System.DateCreated;*System.OfflineAvailability;*System.OfflineStatus;*System.SharedWith"},
    {L"PreviewTitle", L"prop:System.ItemNameDisplay;System.ItemTypeText;System.Title;System.Image.Dimensions;"
                      L"System.Image.BitDepth"},
    {L"ExtendedTileInfo",
     L"prop:System.ItemTypeText;System.Title;System.Image.Dimensions;System.Image.BitDepth;System.Size;"
     L"System.DateModified;System.OfflineAvailability"},
}};

} // namespace

std::vector<RegistrationValue> ExpectedRegistration() {
    std::vector<RegistrationValue> values;
    const std::wstring classes = classesKey;
    for (const HandlerKind kind : allHandlers) {
        const HandlerClass& known = ClassOf(kind);
        const std::wstring classKey = classes + LR"(CLSID\)" + known.classId;
        values.push_back({classKey, nullptr, known.description});
        values.push_back({classKey + LR"(\InProcServer32)", nullptr, L""});
        values.push_back({classKey + LR"(\InProcServer32)", L"ThreadingModel", L"Apartment"});
        if (known.shellEx)
            values.push_back({classes + LR"(.zmi\ShellEx\)" + known.shellEx, nullptr, known.classId});
    }
    const HandlerClass& column = ClassOf(HandlerKind::Column);
    values.push_back({columnHandlersKey + std::wstring(column.classId), nullptr, column.description});
    for (const auto& [name, data] : propertyLists)
        values.push_back({classes + L".zmi", name, data});
    values.push_back({propertyHandlersKey + std::wstring(L".zmi"), nullptr,
                      ClassOf(HandlerKind::Properties).classId, true});
    return values;
}

} // namespace vantrel::tools
