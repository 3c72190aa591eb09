// The Shell's hosts, each asking its handler about one file as the real one does.
#pragma once

#include "tools/preview/HandlerRegistry.h"
#include "tools/preview/Picture.h"
#include "tools/terminal/InputFile.h"

#include <optional>
#include <string>
#include <vector>

namespace vantrel::tools {

struct PixelSize {
    unsigned width = 0;
    unsigned height = 0;
};

// The result of one request. If it is a picture, it has pixels and a suffix for its PNG file's name.
struct HandlerResult {
    HandlerKind handler{};
    std::wstring request{};
    bool ok = false;
    std::wstring text{}; // the value, or what went wrong
    HRESULT code = S_OK;
    std::optional<PixelSize> size{}; // of the picture, or as the value says
    Picture picture{};
    std::optional<unsigned> number{};
    std::wstring isoTime{};
    std::wstring pngSuffix{}; // empty: it gets no PNG file
    std::wstring png{};       // where the picture was written; empty if it was not
};

// Each appends one result per request, also for failed requests.

// Explorer's thumbnail: a stream in, a bitmap of at most the given edge in pixels out.
void AskForThumbnail(HandlerRegistry& registry, const InputFile& file, unsigned edge,
                     std::vector<HandlerResult>& results);
// The property system: a stream in, every property of the store out.
void AskForProperties(HandlerRegistry& registry, const InputFile& file, std::vector<HandlerResult>& results);
// Older hosts: a path in, a bitmap from a second thread and the file's date out.
void AskForExtractedImage(HandlerRegistry& registry, const InputFile& file,
                          std::vector<HandlerResult>& results);
// Explorer's icons: a path in, both icons out.
inline constexpr unsigned largeIconEdge = 32;
inline constexpr unsigned smallIconEdge = 16;
void AskForIcons(HandlerRegistry& registry, const InputFile& file, std::vector<HandlerResult>& results);
// A detail view's column: the file's path and attributes in, the value out.
void AskForColumn(HandlerRegistry& registry, const InputFile& file, std::vector<HandlerResult>& results);

} // namespace vantrel::tools
