#include "tools/pack/Packer.h"
#include "tools/terminal/ComApartment.h"
#include "tools/terminal/Console.h"
#include "tools/terminal/RunTool.h"

namespace vantrel::tools {

namespace {

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

bool Run(CommandLine& arguments, JsonDocument*) {
    const PackOptions options = ParsePackOptions(arguments);
    const ComApartment apartment(COINIT_MULTITHREADED);
    PrintLine(Describe(options.output, Pack(options)));
    return true;
}

} // namespace

} // namespace vantrel::tools

int wmain(int count, wchar_t** arguments) {
    using namespace vantrel::tools;
    return RunTool({.name = L"zmi-pack", .help = packHelp, .run = Run}, count, arguments);
}
