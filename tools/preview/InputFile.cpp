#include "tools/preview/InputFile.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/LongPath.h"

#include <shlwapi.h>
#include <windows.h>

#include <algorithm>

namespace vantrel::tools {

namespace {

std::vector<std::wstring> ZmiNamesIn(const std::filesystem::path& folder, const std::wstring& shown) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW entry{};
    const HANDLE search = FindFirstFileW((folder / L"*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        Check(HRESULT_FROM_WIN32(GetLastError()), shown);
    do {
        const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (!isFolder && lstrcmpiW(PathFindExtensionW(entry.cFileName), L".zmi") == 0)
            names.emplace_back(entry.cFileName);
    } while (FindNextFileW(search, &entry));
    FindClose(search);
    std::sort(names.begin(), names.end(), [](const std::wstring& left, const std::wstring& right) {
        return StrCmpLogicalW(left.c_str(), right.c_str()) < 0;
    });
    return names;
}

} // namespace

std::vector<InputFile> FindInputFiles(const std::vector<std::wstring>& arguments) {
    std::vector<InputFile> files;
    for (const std::wstring& argument : arguments) {
        const std::filesystem::path path = LongPath(argument);
        const DWORD attributes = GetFileAttributesW(path.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            files.push_back({argument, path});
            continue;
        }
        const auto names = ZmiNamesIn(path, argument);
        if (names.empty())
            throw Failure(argument + L": the folder holds no .zmi file");
        for (const std::wstring& name : names)
            files.push_back({(std::filesystem::path(argument) / name).wstring(), LongPath(path / name)});
    }
    return files;
}

} // namespace vantrel::tools
