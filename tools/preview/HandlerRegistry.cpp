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

// IInitializeWithStream where the handler takes a stream, else the interface that its hosts ask for.
const std::array<HandlerClass, 5> g_handlerClasses = {{
    {L"thumbnail", thumbnailProviderId, L"{E357FCCD-A995-4576-B01F-234630154E96}",
     &__uuidof(IInitializeWithStream)},
    {L"extract", extractImageHandlerId, L"{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}", &__uuidof(IExtractImage2)},
    {L"icon", iconHandlerId, L"IconHandler", &IID_IExtractIconW},
    {L"column", columnProviderId, nullptr, &IID_IColumnProvider},
    {L"properties", propertyStoreId, nullptr, &__uuidof(IInitializeWithStream)},
}};

std::wstring FindClass(HandlerKind kind, const std::wstring& extension) {
    const HandlerClass& known = ClassOf(kind);
    std::optional<std::wstring> classId;
    switch (kind) {
    case HandlerKind::Column:
        // Hosts ask every column handler of the folder; only the library's own matters here.
        for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
            if (!classId && KeyExists(root, columnHandlersKey + std::wstring(known.classId)))
                classId = known.classId;
        break;
    case HandlerKind::Properties:
        classId = ReadText(HKEY_LOCAL_MACHINE, propertyHandlersKey + extension);
        break;
    default:
        classId = ReadClassText(extension + LR"(\ShellEx\)" + known.shellEx);
    }
    if (!classId)
        throw Failure(std::wstring(L"no ") + known.name + L" handler is registered for " +
                          (extension.empty() ? L"files without extension" : extension),
                      REGDB_E_CLASSNOTREG);
    return *classId;
}

} // namespace

const HandlerClass& ClassOf(HandlerKind kind) {
    return g_handlerClasses[static_cast<std::size_t>(kind)];
}

std::optional<std::wstring> ReadClassText(const std::wstring& keyBelowClasses) {
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
        if (auto text = ReadText(root, classesKey + keyBelowClasses))
            return text;
    return std::nullopt;
}

std::wstring FindServerPath(const std::wstring& classId) {
    if (auto path = ReadClassText(LR"(CLSID\)" + classId + LR"(\InProcServer32)"))
        return *path;
    throw Failure(L"the class " + classId + L" has no server in the registry", REGDB_E_CLASSNOTREG);
}

void HandlerRegistry::CreateObject(HandlerKind kind, const std::wstring& extension, void** object) {
    const std::wstring classText = dll_ ? ClassOf(kind).classId : FindClass(kind, extension);
    CLSID classId{};
    Check(CLSIDFromString(classText.c_str(), &classId), L"class identifier " + classText);
    const std::filesystem::path path = dll_ ? *dll_ : std::filesystem::path(FindServerPath(classText));
    modules_.try_emplace(path, path).first->second.Create(classId, *ClassOf(kind).interfaceId, object);
}

} // namespace vantrel::tools
