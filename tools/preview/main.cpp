// zmi-preview: shows what the Shell's hosts get from the installed library.
#include "tools/inspection/ZmiFile.h"
#include "tools/picture/PictureNames.h"
#include "tools/preview/doctor/Doctor.h"
#include "tools/preview/PreviewOptions.h"
#include "tools/preview/Report.h"
#include "tools/preview/sheet/ContactSheet.h"
#include "tools/terminal/ComApartment.h"
#include "tools/terminal/Console.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/RunTool.h"

#include <algorithm>
#include <iterator>

namespace vantrel::tools {

namespace {

FileReport Ask(HandlerRegistry& registry, const InputFile& file, const std::vector<unsigned>& sizes) {
    FileReport report{.file = file};
    if (GetFileAttributesW(file.path.c_str()) != INVALID_FILE_ATTRIBUTES) {
        AskForThumbnails(registry, file, sizes, report.results);
        AskForProperties(registry, file, report.results);
        AskForExtractedImage(registry, file, report.results);
        AskForIcons(registry, file, report.results);
        AskForColumn(registry, file, report.results);
    }
    if (report.results.empty() || !report.Ok())
        report.fault = FindFault(file.path);
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

// The files that the arguments stand for. An argument without files is reported at once and sets ok to false.
std::vector<InputFile> FindFiles(const PreviewOptions& options, JsonDocument* json, bool& ok) {
    std::vector<InputFile> files;
    for (const std::wstring& argument : options.inputs) {
        try {
            std::ranges::move(FindInputFiles(argument), std::back_inserter(files));
        } catch (const UsageError&) {
            throw;
        } catch (const Failure& failure) {
            ok = false;
            PrintError(L"zmi-preview: " + failure.Message());
            if (!json)
                continue;
            JsonObject item;
            item.Add("file", argument);
            item.Add("ok", false);
            item.Add("reason", failure.Message());
            item.Add("results", std::vector<JsonObject>());
            json->Append(item);
        }
    }
    return files;
}

bool Preview(const PreviewOptions& options, JsonDocument* json) {
    if (json)
        json->BeginList("files");
    bool ok = true;
    const std::vector<InputFile> files = FindFiles(options, json, ok);
    if (files.empty())
        return false;

    OutputGuard guard(options.force);
    std::size_t nameColumns = 0;
    for (const InputFile& file : files) {
        constexpr std::size_t widestName = 40;
        nameColumns = std::max(nameColumns, std::min(Visible(file.shown).size(), widestName));
        guard.Protect(file.path);
    }
    PictureNames names(options.out.value_or(L""));
    const bool wantsSingles = !options.sheet || options.out;
    std::vector<unsigned> sizes;
    if (wantsSingles)
        sizes = options.sizes.value_or(std::vector<unsigned>{256, 96, 32});
    else if (options.sizes)
        PrintError(L"zmi-preview: the sheet chooses its own thumbnail size; --sizes applies only to the "
                   L"separate files of --out");
    std::optional<ContactSheet> sheet;
    std::wstring sizeForSheetAlone;
    if (options.sheet) {
        guard.Check(*options.sheet, FileKind::Png, NameOrigin::Typed);
        names.Reserve(*options.sheet);
        sheet.emplace(files.size());
        const unsigned edge = sheet->ThumbnailEdge();
        if (std::ranges::find(sizes, edge) == sizes.end()) {
            sizes.push_back(edge);
            sizeForSheetAlone = std::to_wstring(edge);
        }
    }

    HandlerRegistry registry(options.dll);
    Progress progress(files.size());
    for (const InputFile& file : files) {
        progress.Step(file.shown);
        FileReport report = Ask(registry, file, sizes);
        if (sheet)
            sheet->Add(report);
        for (HandlerResult& result : report.results)
            if (wantsSingles && !result.pngSuffix.empty() && result.pngSuffix != sizeForSheetAlone)
                WritePicture(file, names, guard, result);
        ok = ok && report.Ok();
        if (json)
            json->Append(ToJson(report));
        else
            PrintResults(report, nameColumns);
        if (!report.Ok())
            PrintError(L"zmi-preview: " + file.shown + L": " + report.Reason());
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

bool Run(CommandLine& arguments, JsonDocument* json) {
    const PreviewOptions options = ParsePreviewOptions(arguments);
    const ComApartment apartment(COINIT_APARTMENTTHREADED);
    return options.doctor ? RunDoctor(options.dll, options.inputs, json) : Preview(options, json);
}

} // namespace

} // namespace vantrel::tools

int wmain(int count, wchar_t** arguments) {
    using namespace vantrel::tools;
    return RunTool({.name = L"zmi-preview", .help = previewHelp, .run = Run, .takesJson = true}, count,
                   arguments);
}
