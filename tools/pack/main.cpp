#include "tools/pack/Packer.h"
#include "tools/terminal/ComApartment.h"
#include "tools/terminal/Console.h"
#include "tools/terminal/RunTool.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace vantrel::tools {

namespace {

// "3 frames, 640 x 480", or "3 frames (2 of 640 x 480, 1 of 17 x 2)".
std::wstring DescribeFrames(const std::vector<FrameSize>& frames) {
    std::map<std::pair<unsigned, unsigned>, std::size_t> counts;
    for (const FrameSize size : frames)
        ++counts[{size.width, size.height}];
    std::vector<std::pair<std::wstring, std::size_t>> sizes;
    sizes.reserve(counts.size());
    for (const auto& [size, count] : counts)
        sizes.emplace_back(std::to_wstring(size.first) + L" x " + std::to_wstring(size.second), count);
    std::wstring text = std::to_wstring(frames.size()) + (frames.size() == 1 ? L" frame" : L" frames");
    if (sizes.size() == 1)
        return text + L", " + sizes.front().first;

    constexpr std::size_t mostShown = 4;
    std::ranges::stable_sort(sizes, std::greater(), &std::pair<std::wstring, std::size_t>::second);
    const std::size_t shown = sizes.size() > mostShown ? mostShown - 1 : sizes.size();
    for (std::size_t i = 0; i < shown; ++i)
        text += (i == 0 ? L" (" : L", ") + std::to_wstring(sizes[i].second) + L" of " + sizes[i].first;
    if (shown < sizes.size())
        text += L", and " + std::to_wstring(sizes.size() - shown) + L" more sizes";
    return text + L")";
}

// "walk.zmi: 3 frames, 640 x 480, 8 bits per pixel, 922345 bytes".
std::wstring Describe(const std::filesystem::path& output, const ZmiContent& content) {
    std::wstring text = output.wstring() + L": ";
    if (content.frames.empty())
        text += L"the blank default picture";
    else
        text +=
            DescribeFrames(content.frames) + (content.mode == PixelMode::Monochrome ? L", 1 bit per pixel"
                                              : content.mode == PixelMode::Indexed  ? L", 8 bits per pixel"
                                                                                    : L", 16 bits per pixel");
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
