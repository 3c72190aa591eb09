// zmi-preview: shows what the Shell's hosts get from the installed library.
#include "tools/inspection/ZmiFile.h"
#include "tools/picture/PictureNames.h"
#include "tools/preview/doctor/Doctor.h"
#include "tools/preview/FileReport.h"
#include "tools/preview/PreviewOptions.h"
#include "tools/preview/sheet/ContactSheet.h"
#include "tools/terminal/Console.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/InputFile.h"
#include "tools/terminal/RunTool.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::tools {

namespace {

// For a sound file of which a handler shows nothing.
void ExplainFailures(FileReport& report, unsigned smallestThumbnail) {
    report.advice = L"; zmi-preview --doctor may say why";
    for (HandlerResult& result : report.results)
        if (!result.ok && result.handler == HandlerKind::Thumbnail &&
            std::stoul(result.request) < smallestThumbnail) {
            result.text = L"the picture is too thin for thumbnails smaller than " +
                          std::to_wstring(smallestThumbnail) + L" pixels";
            report.advice.clear();
        }
}

ThumbnailSizes ChooseSizes(const PreviewOptions& options, const std::optional<ContactSheet>& sheet) {
    ThumbnailSizes sizes;
    if (!sheet || options.out)
        sizes.edges = options.sizes.value_or(std::vector<unsigned>{256, 96, 32});
    else if (options.sizes)
        PrintError(L"zmi-preview: the sheet chooses its own thumbnail size; --sizes applies only to the "
                   L"separate files of --out");
    if (sheet && std::ranges::find(sizes.edges, sheet->ThumbnailEdge()) == sizes.edges.end())
        sizes.forSheetAlone = sheet->ThumbnailEdge();
    return sizes;
}

FileReport Ask(HandlerRegistry& registry, const InputFile& file, const ThumbnailSizes& sizes) {
    if (!file.fault.empty())
        return {.file = file, .fault = file.fault};
    FileReport report{.file = file};
    if (GetFileAttributesW(file.path.c_str()) != INVALID_FILE_ATTRIBUTES)
        report.results = AskHosts(registry, file, sizes);
    if (report.results.empty() || !report.Ok()) {
        unsigned width = 0;
        unsigned height = 0;
        report.fault = FindFault(file.path, width, height);
        if (!report.fault)
            ExplainFailures(report, SmallestThumbnail(width, height));
    }
    return report;
}

// If the picture can't be written, the result becomes a failed one.
void WritePicture(const InputFile& file, PictureNames& names, const OutputGuard& guard,
                  HandlerResult& result) {
    try {
        const Picture& picture = result.picture;
        const auto png = names.Take(file.path.stem().wstring() + L"-" + result.pngSuffix);
        WritePng(png, guard, NameOrigin::MadeUp, picture.width, picture.height, picture.isOpaque,
                 picture.pixels.data());
        result.png = png;
    } catch (const Failure& failure) {
        result.ok = false;
        result.text = failure.Message();
        result.code = failure.Result();
    }
}

std::size_t NameColumns(const std::vector<InputFile>& files) {
    constexpr std::size_t widestName = 40;
    std::size_t columns = 0;
    for (const InputFile& file : files)
        columns = std::max(columns, std::min(Visible(file.shown).size(), widestName));
    return columns;
}

void Print(const FileReport& report, std::size_t nameColumns, JsonDocument* json) {
    if (json)
        json->Append(ToJson(report));
    else
        PrintResults(report, nameColumns);
    if (!report.Ok())
        PrintError(L"zmi-preview: " + report.file.shown + L": " + report.Reason());
}

bool Preview(const PreviewOptions& options, JsonDocument* json) {
    const std::vector<InputFile> files = FindInputFiles(options.inputs);
    OutputGuard guard(options.force);
    for (const InputFile& file : files)
        guard.Protect(file.path);
    PictureNames names(options.out.value_or(L""));
    std::optional<ContactSheet> sheet;
    if (options.sheet) {
        guard.Check(*options.sheet, FileKind::Png, NameOrigin::Typed);
        names.Reserve(*options.sheet);
        sheet.emplace(files.size());
    }
    const ThumbnailSizes sizes = ChooseSizes(options, sheet);

    if (json)
        json->BeginList("files");
    bool ok = true;
    const std::size_t nameColumns = NameColumns(files);
    HandlerRegistry registry(options.dll);
    Progress progress(files.size());
    for (const InputFile& file : files) {
        progress.Step(file.shown);
        FileReport report = Ask(registry, file, sizes);
        if (sheet)
            sheet->Add(report);
        for (HandlerResult& result : report.results)
            if ((!sheet || options.out) && !result.pngSuffix.empty())
                WritePicture(file, names, guard, result);
        ok = ok && report.Ok();
        Print(report, nameColumns, json);
    }
    if (sheet) {
        sheet->Save(*options.sheet, guard);
        if (json)
            json->Members().Add("sheet", options.sheet->wstring());
        else
            PrintLine(L"sheet -> " + options.sheet->wstring());
    }
    return ok;
}

bool Run(const Arguments& arguments, JsonDocument* json) {
    const PreviewOptions options = ParsePreviewOptions(arguments);
    return options.doctor ? RunDoctor(options.dll, options.inputs, json) : Preview(options, json);
}

} // namespace

} // namespace vantrel::tools

int wmain(int count, wchar_t** arguments) {
    using namespace vantrel::tools;
    return RunTool({.name = L"zmi-preview",
                    .help = previewHelp,
                    .run = Run,
                    .takesJson = true,
                    .apartment = COINIT_APARTMENTTHREADED},
                   count, arguments);
}
