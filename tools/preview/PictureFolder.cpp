#include "tools/preview/PictureFolder.h"

#include "tools/preview/PngFile.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/LongPath.h"

#include <windows.h>

#include <algorithm>
#include <vector>

namespace vantrel::tools {

void PictureFolder::Reserve(const std::filesystem::path& file) {
    taken_.insert(LongPath(file));
}

void PictureFolder::Write(FileReport& report) {
    std::vector<HandlerResult*> pictures;
    for (HandlerResult& result : report.results)
        if (!result.pngSuffix.empty() && !result.picture.pixels.empty())
            pictures.push_back(&result);

    const std::wstring stem = report.file.path.stem();
    std::wstring unique = stem;
    const auto isTaken = [&](const HandlerResult* result) {
        return taken_.contains(LongPath(NameFor(unique, *result)));
    };
    for (unsigned number = 2; std::ranges::any_of(pictures, isTaken); ++number)
        unique = stem + L"-" + std::to_wstring(number);

    // In the slashes that the folder was given in.
    const bool isGeneric = folder_.native().find(L'/') != std::wstring::npos;
    for (HandlerResult* result : pictures) {
        const std::filesystem::path file = NameFor(unique, *result);
        Reserve(file);
        try {
            WritePng(file, guard_, result->picture);
            result->png = isGeneric ? file.generic_wstring() : file.wstring();
        } catch (const Failure& failure) {
            result->ok = false;
            result->text = failure.Message();
            result->code = failure.Result();
        }
    }
}

bool PictureFolder::IgnoreCase::operator()(const std::wstring& left, const std::wstring& right) const {
    return CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_LESS_THAN;
}

std::filesystem::path PictureFolder::NameFor(const std::wstring& stem, const HandlerResult& result) const {
    return folder_ / (stem + L"-" + result.pngSuffix + L".png");
}

} // namespace vantrel::tools
