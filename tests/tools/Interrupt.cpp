// Presses Ctrl+C in another process's console. A process of its own, since whoever changes consoles is silent
// afterwards.
#include <windows.h>

#include <cwchar>

int wmain(int count, wchar_t** arguments) {
    FreeConsole();
    return count == 2 && AttachConsole(std::wcstoul(arguments[1], nullptr, 10)) &&
                   SetConsoleCtrlHandler(nullptr, TRUE) && GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)
               ? 0
               : 1;
}
