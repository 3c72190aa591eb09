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
constexpr std::size_t IndexOf(HandlerKind kind) {
    return static_cast<std::size_t>(kind);
}
inline constexpr std::array allHandlers = {HandlerKind::Thumbnail, HandlerKind::ExtractImage,
                                           HandlerKind::Icon, HandlerKind::Column, HandlerKind::Properties};

inline constexpr const wchar_t* classesKey = LR"(Software\Classes\)";

// The current user's text before the machine's, as the Shell reads HKEY_CLASSES_ROOT.
std::optional<std::wstring> ReadClassText(const std::wstring& keyBelowClasses);

// Throws Failure for a text that is none.
CLSID ParseClassId(const std::wstring& text);

class HandlerRegistry {
public:
    // If a DLL is given, nothing is looked up: the library's classes are taken from it.
    explicit HandlerRegistry(std::optional<std::filesystem::path> dll) : dll_(std::move(dll)) {}

    // Creates the object that a host would get for files with this one's extension. Throws Failure. The
    // server stays loaded as long as this registry exists.
    template <class Interface>
    Microsoft::WRL::ComPtr<Interface> Create(HandlerKind kind, const std::filesystem::path& file) {
        Microsoft::WRL::ComPtr<Interface> object;
        CreateObject(kind, file, reinterpret_cast<void**>(object.GetAddressOf()));
        return object;
    }

private:
    void CreateObject(HandlerKind kind, const std::filesystem::path& file, void** object);

    std::optional<std::filesystem::path> dll_;
    std::map<std::filesystem::path, ServerModule> modules_;
};

} // namespace vantrel::tools
