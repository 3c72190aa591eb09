// The Shell's hosts, each asking its handler about one file as the real one does.
#pragma once

#include "tools/preview/HandlerRegistry.h"
#include "tools/preview/Picture.h"
#include "tools/terminal/InputFile.h"

#include <optional>
#include <string>
#include <vector>

namespace vantrel::tools {

// The result of one request. If it is a picture, it has pixels and a suffix for its PNG file's name.
struct HandlerResult {
    HandlerKind handler{};
    std::wstring request{};
    bool ok = false;
    std::wstring text{}; // the value, or what went wrong
    HRESULT code = S_OK;
    Picture picture{};
    std::optional<unsigned> number{};
    std::wstring isoTime{};
    std::wstring pngSuffix{}; // empty: it gets no PNG file
    std::wstring png{};       // where the picture was written; empty if it was not
};

inline constexpr unsigned largeIconEdge = 32;
inline constexpr unsigned smallIconEdge = 16;

// The thumbnails to ask for, by their longer sides in pixels.
struct ThumbnailSizes {
    std::vector<unsigned> edges;           // each becomes a PNG file
    std::optional<unsigned> forSheetAlone; // unless it is among them
};

// Asks all five handlers. One result per request, also for failed requests.
std::vector<HandlerResult> AskHosts(HandlerRegistry& registry, const InputFile& file,
                                    const ThumbnailSizes& sizes);

} // namespace vantrel::tools
