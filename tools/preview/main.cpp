// zmi-preview: shows what a host of the Shell gets from the installed library.
#include "tools/inspection/ZmiFile.h"
#include "tools/preview/ColumnHost.h"
#include "tools/preview/ContactSheet.h"
#include "tools/preview/doctor/Doctor.h"
#include "tools/preview/ExtractImageHost.h"
#include "tools/preview/IconHost.h"
#include "tools/preview/PngFile.h"
#include "tools/preview/PropertyHost.h"
#include "tools/preview/Report.h"
#include "tools/preview/ThumbnailHost.h"
#include "tools/terminal/ComApartment.h"
#include "tools/terminal/CommandLine.h"
#include "tools/terminal/Console.h"
#include "tools/terminal/LongPath.h"
#include "tools/terminal/RunTool.h"

#include <algorithm>
#include <memory>
#include <set>

namespace vantrel::tools {

namespace {

constexpr const wchar_t* help = LR"(zmi-preview shows what the Shell gets from the installed ZMI library.

Usage: zmi-preview [options] FILE|FOLDER...
       zmi-preview --doctor [--json] [FILE|FOLDER...]
A folder stands for the .zmi files in it. Each of the five handlers is asked as
its host asks it; pictures become NAME-256.png, NAME-icon-32.png and so on.

  --sizes LIST   thumbnail sizes in pixels, 1 to 4096 (default 256,96,32)
  --out FOLDER   where the PNG files go (default: the current folder)
  --sheet FILE   one PNG page with all files; single PNGs only with --out
  --dll FILE     use this library, registered or not
  --json         one JSON document on stdout instead of lines
  --force        replace files that are not PNG files
  --doctor       find out why there are no thumbnails, and how to cure it
  --help         this text
  --version      the version

Exit codes: 0 fine; 1 a file has no picture or something failed; 2 wrong usage.
Examples:
  zmi-preview --sizes 512 --out previews sunset.zmi C:\Pictures
  zmi-preview --sheet page.png C:\Pictures
  zmi-preview --doctor sunset.zmi)";

struct Options {
    std::vector<unsigned> sizes = {256, 96, 32};
    std::optional<std::filesystem::path> out;
    std::optional<std::filesystem::path> sheet;
    std::optional<std::filesystem::path> dll;
    bool doctor = false;
    bool force = false;
    std::vector<std::wstring> inputs;
};

std::vector<unsigned> ParseSizes(const std::wstring& list) {
    constexpr unsigned largest = 4096;
    std::vector<unsigned> sizes;
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(L',', begin), list.size());
        const unsigned size = ParseNumber(L"--sizes", list.substr(begin, end - begin), 1, largest);
        if (std::find(sizes.begin(), sizes.end(), size) == sizes.end())
            sizes.push_back(size);
        begin = end + 1;
    }
    return sizes;
}

Options Parse(CommandLine& line) {
    Options options;
    while (const auto argument = line.Next()) {
        if (!line.IsOption())
            options.inputs.push_back(*argument);
        else if (*argument == L"--sizes")
            options.sizes = ParseSizes(line.Value());
        else if (*argument == L"--out")
            options.out = line.Value();
        else if (*argument == L"--sheet")
            options.sheet = line.Value();
        else if (*argument == L"--dll")
            options.dll = LongPath(line.Value());
        else if (*argument == L"--force")
            options.force = true;
        else if (*argument == L"--doctor")
            options.doctor = true;
        else if (*argument != L"--json")
            throw UsageError(L"unknown option " + *argument);
    }
    if (options.doctor && (options.sheet || options.out))
        throw UsageError(L"--doctor writes no pictures");
    if (options.inputs.empty() && !options.doctor)
        throw UsageError(L"no file given");
    return options;
}

// Writes a file's pictures into one folder. Files of the same name from different folders get a number.
class PictureFolder {
public:
    PictureFolder(std::filesystem::path folder, const OutputGuard& guard)
        : folder_(std::move(folder)), guard_(guard) {}

    void Write(FileReport& report) {
        const std::wstring stem = report.file.path.stem().wstring();
        std::wstring unique = stem;
        for (unsigned number = 2; !taken_.insert(unique).second; ++number)
            unique = stem + L"-" + std::to_wstring(number);
        for (HandlerResult& result : report.results) {
            if (result.picture.pixels.empty())
                continue;
            const std::filesystem::path file = folder_ / (unique + L"-" + result.pngSuffix + L".png");
            WritePng(file, guard_, result.picture);
            // In the slashes that the folder was given in.
            const bool isGeneric = folder_.native().find(L'/') != std::wstring::npos;
            result.png = isGeneric ? file.generic_wstring() : file.wstring();
        }
    }

private:
    struct IgnoreCase {
        bool operator()(const std::wstring& left, const std::wstring& right) const {
            return CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_LESS_THAN;
        }
    };

    std::filesystem::path folder_;
    const OutputGuard& guard_;
    std::set<std::wstring, IgnoreCase> taken_;
};

bool Preview(const Options& options, JsonDocument* json) {
    const std::vector<InputFile> files = FindInputFiles(options.inputs);
    OutputGuard guard(options.force);
    for (const InputFile& file : files)
        guard.Protect(file.path);
    if (options.sheet)
        guard.Check(*options.sheet, FileKind::Png);
    std::optional<ContactSheet> sheet;
    std::vector<unsigned> sizes = options.sizes;
    if (options.sheet) {
        sheet.emplace(files.size());
        if (!options.out)
            sizes.clear();
        if (std::find(sizes.begin(), sizes.end(), sheet->ThumbnailEdge()) == sizes.end())
            sizes.push_back(sheet->ThumbnailEdge());
    }

    HandlerRegistry registry(options.dll);
    std::vector<std::unique_ptr<HandlerHost>> hosts;
    hosts.push_back(std::make_unique<ThumbnailHost>(registry, sizes));
    hosts.push_back(std::make_unique<PropertyHost>(registry));
    hosts.push_back(std::make_unique<ExtractImageHost>(registry));
    hosts.push_back(std::make_unique<IconHost>(registry));
    hosts.push_back(std::make_unique<ColumnHost>(registry));

    PictureFolder folder(options.out.value_or(L""), guard);
    std::vector<FileReport> reports;
    {
        Progress progress(files.size());
        for (const InputFile& file : files) {
            progress.Step(file.shown);
            FileReport& report = reports.emplace_back();
            report.file = file;
            if (GetFileAttributesW(file.path.c_str()) != INVALID_FILE_ATTRIBUTES)
                for (const auto& host : hosts)
                    host->Ask(file, report.results);
            if (report.results.empty() || !report.Ok())
                report.fault = FindFault(file.path);
            if (!options.sheet || options.out)
                folder.Write(report);
            if (sheet)
                sheet->Add(report);
            for (HandlerResult& result : report.results)
                result.picture.pixels = {};
        }
    }
    if (sheet)
        sheet->Save(*options.sheet, guard);
    if (json)
        PrintJson(reports, *json);
    else
        PrintReports(reports);
    if (sheet && !json)
        PrintLine(L"sheet -> " + options.sheet->wstring());
    return std::all_of(reports.begin(), reports.end(), [](const auto& report) { return report.Ok(); });
}

bool Run(CommandLine& arguments, JsonDocument* json) {
    const Options options = Parse(arguments);
    const ComApartment apartment(COINIT_APARTMENTTHREADED);
    if (!options.doctor)
        return Preview(options, json);
    return RunDoctor(options.dll, options.inputs, json);
}

} // namespace

} // namespace vantrel::tools

int wmain(int count, wchar_t** arguments) {
    using namespace vantrel::tools;
    return RunTool({.name = L"zmi-preview", .help = help, .run = Run, .takesJson = true}, count, arguments);
}
