// The installer's custom action: registers or unregisters the DLL for the user who runs the installer.
#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include <cwchar>

// Arguments: register or unregister, and the DLL's path. The exit code is what Windows Installer looks at.
int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!arguments || count != 3)
        return ERROR_INVALID_PARAMETER;
    const bool registering = std::wcscmp(arguments[1], L"register") == 0;
    const HMODULE library = LoadLibraryExW(arguments[2], nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!library)
        return static_cast<int>(GetLastError());
    using Export = HRESULT(STDAPICALLTYPE*)();
    const auto call = reinterpret_cast<Export>(reinterpret_cast<void*>(
        GetProcAddress(library, registering ? "DllRegisterServer" : "DllUnregisterServer")));
    if (!call)
        return ERROR_PROC_NOT_FOUND;
    HRESULT result = call();
    // Under UAC the user's own token may not write the last, machine-wide value; the installer writes that
    // one, but the library stopped there and told the Shell nothing.
    if (result == E_ACCESSDENIED) {
        result = S_OK;
        SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST | SHCNF_FLUSH, nullptr, nullptr);
    }
    return SUCCEEDED(result) ? ERROR_SUCCESS : result;
}
