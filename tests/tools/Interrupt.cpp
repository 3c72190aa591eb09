// Sends Ctrl+C to another process's console. A separate program, since a process that changes consoles loses
// its output.
#include <windows.h>

#include <cwchar>

int wmain(int count, wchar_t** arguments) {
    FreeConsole();
    return count == 2 && AttachConsole(std::wcstoul(arguments[1], nullptr, 10)) &&
                   SetConsoleCtrlHandler(nullptr, TRUE) && GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)
               ? 0
               : 1;
}
