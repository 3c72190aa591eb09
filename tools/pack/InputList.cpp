#include "tools/pack/InputList.h"

#include "tools/pack/WicPicture.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/FileSearch.h"

#include <algorithm>
#include <cwctype>
#include <iterator>
#include <string>

namespace vantrel::tools {

namespace {

// ".bmp,.dib,.jpg," in lower case: the extensions of all decoders on this system. Wine separates them by
// semicolons.
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

} // namespace

std::vector<std::filesystem::path> ListInputs(IWICImagingFactory& factory,
                                              const std::vector<std::filesystem::path>& typed) {
    std::vector<std::filesystem::path> inputs;
    for (const std::filesystem::path& input : typed) {
        FileSearch found = FindFiles(input);
        if (found.isFolder)
            std::erase_if(found.files, [known = DecodableExtensions(factory)](const auto& file) {
                std::wstring extension = file.extension().wstring() + L',';
                std::ranges::transform(extension, extension.begin(),
                                       [](wchar_t letter) { return static_cast<wchar_t>(towlower(letter)); });
                return extension == L"," || known.find(extension) == std::wstring::npos;
            });
        if (found.files.empty())
            throw Failure(input.wstring() +
                          (found.isFolder ? L": the folder contains no pictures" : L": no such file"));
        std::ranges::move(found.files, std::back_inserter(inputs));
    }
    return inputs;
}

} // namespace vantrel::tools
