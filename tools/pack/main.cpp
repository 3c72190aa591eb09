#include "tools/pack/Packer.h"
#include "tools/picture/PictureNames.h"
#include "tools/terminal/Console.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/FileName.h"
#include "tools/terminal/NumberText.h"
#include "tools/terminal/RunTool.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace vantrel::tools {

namespace {

// "3 frames, 640 x 480", or "3 frames (2 of 640 x 480, 1 of 17 x 2)".
std::wstring DescribeFrames(const std::vector<ZmiFrame>& frames) {
    std::map<std::pair<unsigned, unsigned>, std::size_t> counts;
    for (const ZmiFrame& frame : frames)
        ++counts[{frame.width, frame.height}];
    std::vector<std::pair<std::wstring, std::size_t>> sizes;
    sizes.reserve(counts.size());
    for (const auto& [size, count] : counts)
        sizes.emplace_back(SizeText(size.first, size.second), count);
    std::wstring text = Grouped(frames.size()) + (frames.size() == 1 ? L" frame" : L" frames");
    if (sizes.size() == 1)
        return text + L", " + sizes.front().first;

    constexpr std::size_t mostShown = 4;
    std::ranges::stable_sort(sizes, std::greater(), &std::pair<std::wstring, std::size_t>::second);
    const std::size_t shown = sizes.size() > mostShown ? mostShown - 1 : sizes.size();
    for (std::size_t i = 0; i < shown; ++i)
        text += (i == 0 ? L" (" : L", ") + Grouped(sizes[i].second) + L" of " + sizes[i].first;
    if (shown < sizes.size())
        text += L", and " + Grouped(sizes.size() - shown) + L" more sizes";
    return text + L")";
}

// "walk.zmi: 3 frames, 640 x 480, 8 bits per pixel, 922,345 bytes".
std::wstring Describe(const std::filesystem::path& output, const ZmiContent& content) {
    std::wstring text = output.wstring() + L": ";
    if (content.frames.empty())
        text += L"the blank picture";
    else
        text +=
            DescribeFrames(content.frames) + (content.mode == PixelMode::Monochrome ? L", 1 bit per pixel"
                                              : content.mode == PixelMode::Indexed  ? L", 8 bits per pixel"
                                                                                    : L", 16 bits per pixel");
    return text + L", " + Grouped(ZmiFileSize(content)) + L" bytes";
}

bool PackEach(Packer& packer, const PackOptions& options) {
    const auto& inputs = packer.AllInputs();
    if (options.title && inputs.size() > 1)
        throw UsageError(L"--title with --each needs a single input; here are " + Grouped(inputs.size()));
    PictureNames names(options.out.value_or(L""), L".zmi");
    bool ok = true;
    for (const auto& input : inputs)
        try {
            if (HasExtension(input.path, L".zmi"))
                throw Failure(input.shown + L": this is a ZMI file already");
            const auto output = names.Take(input.path.stem().wstring());
            PrintLine(Describe(output, packer.Pack({&input, 1}, output, NameOrigin::MadeUp)));
        } catch (const Failure& failure) {
            PrintError(L"zmi-pack: " + failure.Message());
            ok = false;
        }
    return ok;
}

bool Run(const Arguments& arguments, JsonDocument*) {
    const PackOptions options = ParsePackOptions(arguments);
    Packer packer(options);
    const auto& inputs = packer.AllInputs();
    bool ok = true;
    if (options.each) {
        ok = PackEach(packer, options);
    } else if (inputs.size() == 1 && HasExtension(inputs[0].path, L".zmi") && options.title &&
               !options.ChangesPictures()) {
        packer.ChangeTitle();
        PrintLine(options.output.wstring() + L": " + inputs[0].shown + L" with another title");
    } else {
        PrintLine(Describe(options.output, packer.Pack(inputs, options.output, NameOrigin::Typed)));
    }
    packer.PrintLosses();
    return ok;
}

} // namespace

} // namespace vantrel::tools

int wmain(int count, wchar_t** arguments) {
    using namespace vantrel::tools;
    return RunTool({.name = L"zmi-pack", .help = packHelp, .run = Run}, count, arguments);
}
