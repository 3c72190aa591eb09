#include "tools/preview/HandlerRegistry.h"

#include "support/IColumnProvider.h"
#include "support/RegistrationTable.h"
#include "tools/preview/RegistryReader.h"
#include "tools/terminal/Failure.h"

#include <windows.h>

#include <propsys.h>
#include <shlguid.h>
#include <shlobj.h>
#include <thumbcache.h>

namespace vantrel::tools {

namespace {

constexpr wchar_t columnHandlersKey[] = LR"(Software\Classes\Folder\ShellEx\ColumnHandlers\)";
constexpr wchar_t propertyHandlersKey[] =
    LR"(Software\Microsoft\Windows\CurrentVersion\PropertySystem\PropertyHandlers\)";

// IInitializeWithStream where the handler takes a stream, else the interface that its hosts ask for.
const std::array<HandlerClass, 5> g_handlerClasses = {{
    {L"thumbnail", thumbnailProviderId, L"{E357FCCD-A995-4576-B01F-234630154E96}",
     &__uuidof(IInitializeWithStream)},
    {L"extract", extractImageHandlerId, L"{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}", &__uuidof(IExtractImage2)},
    {L"icon", iconHandlerId, L"IconHandler", &IID_IExtractIconW},
    {L"column", columnProviderId, nullptr, &IID_IColumnProvider},
    {L"properties", propertyStoreId, nullptr, &__uuidof(IInitializeWithStream)},
}};

// The class that the registry names for files with an extension.
std::optional<std::wstring> FindClass(HandlerKind kind, const std::wstring& extension) {
    const HandlerClass& known = ClassOf(kind);
    if (kind == HandlerKind::Properties)
        return ReadText(HKEY_LOCAL_MACHINE, propertyHandlersKey + extension);
    if (known.shellEx)
        return ReadClassText(extension + LR"(\ShellEx\)" + known.shellEx);
    // Hosts ask every column handler of the folder; only the library's own matters here.
    const std::wstring key = columnHandlersKey + std::wstring(known.classId);
    if (KeyExists(HKEY_CURRENT_USER, key) || KeyExists(HKEY_LOCAL_MACHINE, key))
        return known.classId;
    return std::nullopt;
}

} // namespace

const HandlerClass& ClassOf(HandlerKind kind) {
    return g_handlerClasses[IndexOf(kind)];
}

std::optional<std::wstring> ReadClassText(const std::wstring& keyBelowClasses) {
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
        if (auto text = ReadText(root, classesKey + keyBelowClasses))
            return text;
    return std::nullopt;
}

CLSID ParseClassId(const std::wstring& text) {
    CLSID classId{};
    Check(CLSIDFromString(text.c_str(), &classId), L"class identifier " + text);
    return classId;
}

void HandlerRegistry::CreateObject(HandlerKind kind, const std::filesystem::path& file, void** object) {
    const HandlerClass& known = ClassOf(kind);
    const std::wstring extension = file.extension().wstring();
    const std::optional<std::wstring> found = dll_ ? known.classId : FindClass(kind, extension);
    if (!found)
        throw Failure(std::wstring(L"no ") + known.name + L" handler is registered for " +
                          (extension.empty() ? L"files without extension" : extension),
                      REGDB_E_CLASSNOTREG);
    const CLSID classId = ParseClassId(*found);
    std::optional<std::filesystem::path> server = dll_;
    if (!server)
        server = ReadClassText(LR"(CLSID\)" + *found + LR"(\InProcServer32)");
    if (!server)
        throw Failure(L"the class " + *found + L" has no server in the registry", REGDB_E_CLASSNOTREG);
    modules_.try_emplace(*server, *server).first->second.Create(classId, *known.interfaceId, object);
}

} // namespace vantrel::tools
