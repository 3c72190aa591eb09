#include "tools/terminal/RunTool.h"
#include "tools/unpack/Unpacker.h"

int wmain(int count, wchar_t** arguments) {
    using namespace vantrel::tools;
    const auto run = [](const Arguments& typed, JsonDocument* json) {
        return Unpacker(ParseUnpackOptions(typed), json).Run();
    };
    return RunTool({.name = L"zmi-unpack", .help = unpackHelp, .run = run, .takesJson = true}, count,
                   arguments);
}
