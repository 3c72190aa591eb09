// How the Shell finds the class that handles a file: extension, binding, class, server path.
#pragma once

#include "tools/preview/ServerModule.h"

#include <wrl/client.h>

#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace vantrel::tools {

enum class HandlerKind { Thumbnail, ExtractImage, Icon, Column, Properties };

// What is fixed about each of the library's five classes.
struct HandlerClass {
    const wchar_t* name;    // as shown in this tool's output
    const wchar_t* classId; // with braces, as the registry has it
    const wchar_t* shellEx; // the binding's key below <extension>\ShellEx; null if it is elsewhere
    const IID* interfaceId; // what hosts ask the class for first
};

const HandlerClass& ClassOf(HandlerKind kind);
inline constexpr std::array allHandlers = {HandlerKind::Thumbnail, HandlerKind::ExtractImage,
                                           HandlerKind::Icon, HandlerKind::Column, HandlerKind::Properties};

inline constexpr const wchar_t* classesKey = LR"(Software\Classes\)";
inline constexpr const wchar_t* columnHandlersKey = LR"(Software\Classes\Folder\ShellEx\ColumnHandlers\)";
inline constexpr const wchar_t* propertyHandlersKey =
    LR"(Software\Microsoft\Windows\CurrentVersion\PropertySystem\PropertyHandlers\)";

// The current user's text before the machine's, as the Shell reads HKEY_CLASSES_ROOT.
std::optional<std::wstring> ReadClassText(const std::wstring& keyBelowClasses);

// The server that is registered for a class. Throws Failure when there is none.
std::wstring FindServerPath(const std::wstring& classId);

class HandlerRegistry {
public:
    // If a DLL is given, nothing is looked up: the library's classes are taken from it.
    explicit HandlerRegistry(std::optional<std::filesystem::path> dll) : dll_(std::move(dll)) {}

    // Creates the object that a host would get for files with this extension (including the dot). Throws
    // Failure. The server stays loaded as long as this registry exists.
    template <class Interface>
    Microsoft::WRL::ComPtr<Interface> Create(HandlerKind kind, const std::wstring& extension) {
        Microsoft::WRL::ComPtr<Interface> object;
        CreateObject(kind, extension, reinterpret_cast<void**>(object.GetAddressOf()));
        return object;
    }

private:
    void CreateObject(HandlerKind kind, const std::wstring& extension, void** object);

    std::optional<std::filesystem::path> dll_;
    std::map<std::filesystem::path, ServerModule> modules_;
};

} // namespace vantrel::tools
