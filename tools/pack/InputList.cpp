#include "tools/pack/InputList.h"

#include "tools/pack/WicPicture.h"
#include "tools/terminal/CommandLine.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/FileName.h"
#include "tools/terminal/FileSearch.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

namespace vantrel::tools {

namespace {

// Those of all decoders on this system, each with its dot.
std::set<std::wstring, NameOrder> DecodableExtensions(IWICImagingFactory& factory) {
    std::set<std::wstring, NameOrder> all;
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
        std::ranges::replace(extensions, L';', L','); // as Wine separates them
        std::ranges::move(SplitList(extensions), std::inserter(all, all.end()));
    }
    all.erase(L"");
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
                return !known.contains(file.extension().wstring());
            });
        if (found.files.empty())
            throw Failure(input.wstring() +
                          (found.isFolder ? L": the folder contains no pictures" : L": no such file"));
        std::ranges::move(found.files, std::back_inserter(inputs));
    }
    return inputs;
}

} // namespace vantrel::tools
