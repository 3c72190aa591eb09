#include "tools/terminal/FileSearch.h"

#include "support/Handles.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/LongPath.h"

#include <shlwapi.h>

#include <algorithm>
#include <string>

namespace vantrel::tools {

FileSearch FindFiles(const std::filesystem::path& typed) {
    FileSearch search;
    const DWORD attributes = GetFileAttributesW(LongPath(typed).c_str());
    search.isFolder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    search.isPattern = typed.filename().native().find_first_of(L"*?") != std::wstring::npos;
    if (!search.isFolder && !search.isPattern) {
        search.files = {typed};
        return search;
    }

    WIN32_FIND_DATAW found{};
    const HANDLE handle = FindFirstFileW(LongPath(search.isFolder ? typed / L"*" : typed).c_str(), &found);
    if (handle == INVALID_HANDLE_VALUE) {
        if (GetLastError() != ERROR_FILE_NOT_FOUND && GetLastError() != ERROR_PATH_NOT_FOUND)
            FailWithLastError(typed.wstring() + L": cannot be read");
        return search;
    }
    const UniqueSearch owner(handle);
    std::vector<std::wstring> names;
    do {
        if ((found.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN)) == 0)
            names.emplace_back(found.cFileName);
    } while (FindNextFileW(handle, &found));
    std::ranges::sort(names, [](const std::wstring& left, const std::wstring& right) {
        const int order = StrCmpLogicalW(left.c_str(), right.c_str());
        return order != 0 ? order < 0 : left < right;
    });
    for (const std::wstring& name : names)
        search.files.push_back((search.isFolder ? typed : typed.parent_path()) / name);
    return search;
}

} // namespace vantrel::tools
