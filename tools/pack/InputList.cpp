#include "tools/pack/InputList.h"

#include "support/Handles.h"
#include "tools/pack/WicPicture.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/LongPath.h"

#include <shlwapi.h>

#include <algorithm>
#include <cwctype>
#include <string>

namespace vantrel::tools {

namespace {

// ".bmp,.dib,.jpg," in lower case: of all decoders that this system has. Wine parts them by semicolons.
std::wstring DecodableExtensions(IWICImagingFactory& factory) {
    std::wstring all;
    ComPtr<IEnumUnknown> decoders;
    if (FAILED(factory.CreateComponentEnumerator(WICDecoder, WICComponentEnumerateDefault,
                                                 decoders.ReleaseAndGetAddressOf())))
        return all;
    for (ComPtr<IUnknown> decoder; decoders->Next(1, decoder.ReleaseAndGetAddressOf(), nullptr) == S_OK;) {
        ComPtr<IWICBitmapCodecInfo> codec;
        UINT size = 0;
        if (FAILED(decoder.As(&codec)) || FAILED(codec->GetFileExtensions(0, nullptr, &size)) || size == 0)
            continue;
        std::wstring extensions(size, L'\0');
        if (FAILED(codec->GetFileExtensions(size, extensions.data(), &size)))
            continue;
        extensions.resize(size - 1);
        all += extensions + L',';
    }
    std::ranges::transform(all, all.begin(), [](wchar_t letter) {
        return letter == L';' ? L',' : static_cast<wchar_t>(towlower(letter));
    });
    return all;
}

// The names of the files that the pattern finds, hidden ones aside, sorted as people count.
std::vector<std::wstring> FindFiles(const std::filesystem::path& pattern) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(LongPath(pattern).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        if (GetLastError() != ERROR_FILE_NOT_FOUND)
            FailWithLastError(pattern.wstring() + L": cannot be read");
        return names;
    }
    const UniqueSearch owner(search);
    do {
        if ((found.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN)) == 0)
            names.emplace_back(found.cFileName);
    } while (FindNextFileW(search, &found) != 0);
    std::ranges::sort(names, [](const std::wstring& a, const std::wstring& b) {
        const int order = StrCmpLogicalW(a.c_str(), b.c_str());
        return order != 0 ? order < 0 : a < b;
    });
    return names;
}

} // namespace

std::vector<std::filesystem::path> ListInputs(IWICImagingFactory& factory,
                                              const std::vector<std::filesystem::path>& typed) {
    std::vector<std::filesystem::path> inputs;
    for (const std::filesystem::path& input : typed) {
        const DWORD attributes = GetFileAttributesW(LongPath(input).c_str());
        const bool isFolder =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const bool isPattern = input.filename().wstring().find_first_of(L"*?") != std::wstring::npos;
        if (!isFolder && !isPattern) {
            inputs.push_back(input);
            continue;
        }

        std::vector<std::wstring> names = FindFiles(isFolder ? input / L"*" : input);
        if (isFolder)
            std::erase_if(names, [known = DecodableExtensions(factory)](const std::filesystem::path& name) {
                std::wstring extension = name.extension().wstring() + L',';
                std::ranges::transform(extension, extension.begin(),
                                       [](wchar_t letter) { return static_cast<wchar_t>(towlower(letter)); });
                return extension == L"," || known.find(extension) == std::wstring::npos;
            });
        if (names.empty())
            throw Failure(input.wstring() +
                          (isFolder ? L": the folder holds no pictures" : L": no file has such a name"));
        const std::filesystem::path folder = isFolder ? input : input.parent_path();
        for (const std::wstring& name : names)
            inputs.push_back(folder / name);
    }
    return inputs;
}

} // namespace vantrel::tools
