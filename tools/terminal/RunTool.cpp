#include "tools/terminal/RunTool.h"

#include "tools/terminal/ComApartment.h"
#include "tools/terminal/Console.h"
#include "tools/terminal/OutputFile.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>

namespace vantrel::tools {

namespace {

enum ExitCode { done = 0, failed = 1, wrongUsage = 2, interrupted = 130 };

// Runs on its own thread, whatever the others do. Not ExitProcess, which waits for locks that they may hold;
// and Wine's default handler ends the process with exit code 0.
BOOL WINAPI EndNow(DWORD) {
    OutputFile::DiscardAll();
    TerminateProcess(GetCurrentProcess(), interrupted);
    return TRUE;
}

} // namespace

int RunTool(const Tool& tool, int count, wchar_t** texts) {
    SetConsoleCtrlHandler(EndNow, TRUE);
    std::optional<JsonDocument> json;
    ExitCode exitCode = failed;
    std::wstring words;
    try {
        const Arguments arguments(texts + std::min(count, 1), texts + count);
        if (HasOption(arguments, L"--help") || HasOption(arguments, L"-h")) {
            PrintText(std::wstring(tool.help) + L'\n');
            return done;
        }
        if (HasOption(arguments, L"--version")) {
            PrintLine(std::wstring(tool.name) + L" " VANTREL_VERSION);
            return done;
        }
        if (tool.takesJson && HasOption(arguments, L"--json"))
            json.emplace();
        const ComApartment apartment(tool.apartment);
        const bool ok = tool.run(arguments, json ? &*json : nullptr);
        if (json)
            json->Close(ok);
        return ok ? done : failed;
    } catch (const Refusal& refusal) {
        exitCode = wrongUsage;
        words = refusal.Message();
    } catch (const UsageError& error) {
        exitCode = wrongUsage;
        words = error.Message() + L" (see " + std::wstring(tool.name) + L" --help)";
    } catch (const Failure& failure) {
        words = failure.Message();
    } catch (const std::bad_alloc&) {
        words = L"not enough memory";
    } catch (const std::exception& error) {
        words.assign(error.what(), error.what() + std::strlen(error.what()));
    }
    if (!words.empty())
        PrintError(std::wstring(tool.name) + L": " + words);
    try {
        if (json)
            json->Close(false, words);
    } catch (const Failure&) {
        // stdout is what failed, or fails as well; the exit code reports it.
    }
    return exitCode;
}

} // namespace vantrel::tools
