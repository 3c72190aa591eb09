#include "tools/preview/PreviewOptions.h"

#include "tools/terminal/LongPath.h"

#include <algorithm>

namespace vantrel::tools {

namespace {

std::vector<unsigned> ParseSizes(const std::wstring& list) {
    constexpr unsigned largest = 4096;
    std::vector<unsigned> sizes;
    for (const std::wstring& item : SplitList(list)) {
        const unsigned size = ParseNumber(L"--sizes", item, 1, largest);
        if (std::ranges::find(sizes, size) == sizes.end())
            sizes.push_back(size);
    }
    return sizes;
}

} // namespace

const std::wstring_view previewHelp =
    LR"(zmi-preview: shows what the Shell gets from the installed ZMI library.

  zmi-preview [options] FILE|PATTERN|FOLDER...
  zmi-preview --doctor [--dll FILE] [--json] [FILE|PATTERN|FOLDER...]

A pattern such as step*.zmi stands for the files that match it, a folder for the
.zmi files in it. Each of the five handlers is looked up in the registry, created
through its library's DllGetClassObject, and asked what its hosts ask; pictures
become NAME-256.png, NAME-icon-32.png and so on.

  --sizes LIST   thumbnail sizes in pixels, 1 to 4096 (default 256,96,32)
  --out FOLDER   where the PNG files go (default: the current folder)
  --sheet FILE   one PNG page of all files; separate PNG files only with --out
  --force        replaces existing files. Without it, FILE of --sheet may be
                 replaced if it is a PNG file, and NAME-256.png and so on only
                 by the same bytes. An input is never replaced.
  --dll FILE     uses this library, registered or not
  --json         prints one JSON document instead of lines
  --doctor       finds out why there are no thumbnails, and what to do about it
  --help, --version
  --             only files follow, even if their names start with a dash

  zmi-preview --sizes 512 --out previews sunset.zmi C:\Pictures
  zmi-preview --sheet page.png C:\Pictures
  zmi-preview --doctor sunset.zmi

Exit code: 0 done, 1 a file has no picture, an output failed or the doctor found
a failure, 2 wrong usage or an output that may not be replaced, 130 ended by
Ctrl+C.)";

PreviewOptions ParsePreviewOptions(const Arguments& arguments) {
    PreviewOptions options;
    options.inputs = TakeOptions(
        arguments, {{L"--sizes", [&](const std::wstring& list) { options.sizes = ParseSizes(list); }},
                    {L"--out", &options.out},
                    {L"--sheet", &options.sheet},
                    {L"--force", &options.force},
                    {L"--dll", [&](const std::wstring& file) { options.dll = LongPath(file); }},
                    {L"--json"},
                    {L"--doctor", &options.doctor}});
    if (options.doctor && (options.sheet || options.out || options.sizes || options.force))
        throw UsageError(L"--doctor writes no pictures");
    if (options.inputs.empty() && !options.doctor)
        throw UsageError(L"no file given");
    return options;
}

} // namespace vantrel::tools
