#include "tools/preview/InputFile.h"

#include "support/Handles.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/LongPath.h"

#include <shlwapi.h>
#include <windows.h>

#include <algorithm>

namespace vantrel::tools {

namespace {

// The names of the files that match a pattern.
std::vector<std::wstring> FindNames(const std::filesystem::path& pattern, const std::wstring& shown) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW entry{};
    const HANDLE handle = FindFirstFileW(pattern.c_str(), &entry);
    if (handle == INVALID_HANDLE_VALUE && GetLastError() == ERROR_FILE_NOT_FOUND)
        return names;
    if (handle == INVALID_HANDLE_VALUE)
        FailWithLastError(shown);
    const UniqueSearch search(handle);
    do {
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            names.emplace_back(entry.cFileName);
    } while (FindNextFileW(search.get(), &entry));
    std::ranges::sort(names, [](const std::wstring& left, const std::wstring& right) {
        return StrCmpLogicalW(left.c_str(), right.c_str()) < 0;
    });
    return names;
}

} // namespace

std::vector<InputFile> FindInputFiles(const std::wstring& argument) {
    const std::filesystem::path path = LongPath(argument);
    const DWORD attributes = GetFileAttributesW(path.c_str());
    const bool isFolder =
        attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const bool isPattern = path.filename().native().find_first_of(L"*?") != std::wstring::npos;
    if (!isFolder && !isPattern)
        return {{argument, path}};

    const std::filesystem::path folder = isFolder ? path : path.parent_path();
    const std::filesystem::path typed(argument);
    std::vector<InputFile> files;
    for (const std::wstring& name : FindNames(isFolder ? path / L"*" : path, argument))
        if (isPattern || lstrcmpiW(PathFindExtensionW(name.c_str()), L".zmi") == 0)
            files.push_back(
                {(isFolder ? typed / name : typed.parent_path() / name).wstring(), LongPath(folder / name)});
    if (files.empty())
        throw Failure(argument + (isFolder ? L": the folder holds no .zmi file" : L": no file matches"));
    return files;
}

} // namespace vantrel::tools
