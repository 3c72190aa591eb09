#include "tools/terminal/ComApartment.h"
#include "tools/terminal/RunTool.h"
#include "tools/unpack/Unpacker.h"

namespace vantrel::tools {

namespace {

bool Run(CommandLine& arguments, JsonDocument* json) {
    const UnpackOptions options = ParseUnpackOptions(arguments);
    const ComApartment apartment(COINIT_MULTITHREADED);
    return Unpacker(options, json).Run();
}

} // namespace

} // namespace vantrel::tools

int wmain(int count, wchar_t** arguments) {
    using namespace vantrel::tools;
    return RunTool({.name = L"zmi-unpack", .help = unpackHelp, .run = Run, .takesJson = true}, count,
                   arguments);
}
