#include "tools/terminal/InputFile.h"

#include "support/Handles.h"
#include "tools/terminal/FileName.h"
#include "tools/terminal/LongPath.h"

#include <shlwapi.h>

#include <algorithm>

namespace vantrel::tools {

namespace {

// In natural order, without those of folders and hidden files. The fault is replaced if they can't be read.
std::vector<std::wstring> FindNames(const std::filesystem::path& pattern, std::wstring& fault) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    const HANDLE handle = FindFirstFileW(LongPath(pattern).c_str(), &found);
    if (handle == INVALID_HANDLE_VALUE) {
        if (const DWORD error = GetLastError(); !IsAbsence(error))
            fault = L"cannot be read: " + DescribeHresult(HRESULT_FROM_WIN32(error));
        return names;
    }
    const UniqueSearch owner(handle);
    do {
        if ((found.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN)) == 0)
            names.emplace_back(found.cFileName);
    } while (FindNextFileW(handle, &found));
    std::ranges::sort(names, [](const std::wstring& left, const std::wstring& right) {
        const int order = StrCmpLogicalW(left.c_str(), right.c_str());
        return order != 0 ? order < 0 : left < right;
    });
    return names;
}

} // namespace

const FolderFilter zmiFiles = {L".zmi files", [](const auto& file) { return HasExtension(file, L".zmi"); }};

std::vector<InputFile> FindInputFiles(const Arguments& typed, const FolderFilter& filter) {
    std::vector<InputFile> files;
    for (const std::filesystem::path name : typed) {
        InputFile itself{name.wstring(), LongPath(name)};
        const DWORD attributes = GetFileAttributesW(itself.path.c_str());
        const bool isFolder =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const std::size_t before = files.size();
        if (isFolder || name.filename().native().find_first_of(L"*?") != std::wstring::npos) {
            itself.fault =
                isFolder ? std::wstring(L"the folder contains no ") + filter.name : L"file not found";
            for (const std::wstring& found : FindNames(isFolder ? name / L"*" : name, itself.fault)) {
                const std::filesystem::path file = (isFolder ? name : name.parent_path()) / found;
                if (!isFolder || filter.takes(file))
                    files.push_back({file.wstring(), LongPath(file)});
            }
        }
        if (files.size() == before)
            files.push_back(std::move(itself));
    }
    return files;
}

} // namespace vantrel::tools
