#include "tools/preview/InputFile.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/FileSearch.h"
#include "tools/terminal/LongPath.h"

#include <windows.h>

namespace vantrel::tools {

std::vector<InputFile> FindInputFiles(const std::wstring& argument) {
    FileSearch found = FindFiles(argument);
    if (found.isFolder)
        std::erase_if(found.files, [](const std::filesystem::path& file) {
            return CompareStringOrdinal(file.extension().c_str(), -1, L".zmi", -1, TRUE) != CSTR_EQUAL;
        });
    if (found.files.empty())
        throw Failure(argument +
                      (found.isFolder ? L": the folder contains no .zmi files" : L": no such file"));
    std::vector<InputFile> files;
    for (const std::filesystem::path& file : found.files)
        files.push_back({file.wstring(), LongPath(file)});
    return files;
}

} // namespace vantrel::tools
