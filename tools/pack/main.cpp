#include "tools/pack/Packer.h"
#include "tools/pack/PackError.h"
#include "tools/terminal/CommandLine.h"
#include "tools/terminal/Console.h"

#include <windows.h>

#include <objbase.h>

#include <new>

namespace vantrel::tools {

namespace {

enum ExitCode { done = 0, failed = 1, wrongUsage = 2 };

// "walk.zmi: 3 frames, 640 x 480, 8 bits per pixel, 922,345 bytes".
std::wstring Describe(const std::filesystem::path& output, const ZmiContent& content) {
    const auto bits = content.mode == zmi::PixelMode::Mono      ? 1
                      : content.mode == zmi::PixelMode::Indexed ? 8
                                                                : 16;
    const std::size_t count = content.frames.size();
    std::wstring text = output.wstring() + L": ";
    if (count == 0)
        text += L"the blank default picture";
    else
        text += std::to_wstring(count) + (count == 1 ? L" frame, " : L" frames, ") +
                std::to_wstring(content.frames.front().width) + L" x " +
                std::to_wstring(content.frames.front().height) + L", " + std::to_wstring(bits) +
                (bits == 1 ? L" bit per pixel" : L" bits per pixel");
    return text + L", " + std::to_wstring(ZmiFileSize(content)) + L" bytes";
}

int Fail(const std::wstring& message) {
    PrintError(L"zmi-pack: " + message);
    return failed;
}

int Run(int count, wchar_t** arguments) {
    try {
        const PackOptions options = ParsePackOptions(count, arguments);
        if (options.task == PackTask::Help) {
            PrintLine(packHelp);
        } else if (options.task == PackTask::Version) {
            PrintLine(L"zmi-pack " VANTREL_VERSION);
        } else {
            PrintLine(Describe(options.output, Pack(options)));
        }
        return done;
    } catch (const UsageError& error) {
        PrintError(L"zmi-pack: " + error.Message() + L" (zmi-pack --help shows how)");
        return wrongUsage;
    } catch (const PackError& error) {
        return Fail(error.Message());
    } catch (const std::filesystem::filesystem_error& error) {
        return Fail(DescribeFileError(error));
    } catch (const std::bad_alloc&) {
        return Fail(L"not enough memory");
    }
}

} // namespace

} // namespace vantrel::tools

int wmain(int count, wchar_t** arguments) {
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)))
        return vantrel::tools::Fail(L"COM does not start");
    const int exitCode = vantrel::tools::Run(count, arguments);
    CoUninitialize();
    return exitCode;
}
