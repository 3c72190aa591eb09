// The hosts of the Shell, each asking its handler about one file as the original does.
#pragma once

#include "tools/preview/HandlerRegistry.h"
#include "tools/preview/InputFile.h"
#include "tools/preview/Picture.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vantrel::tools {

// The answer to one request. A picture that was handed out has pixels and a suffix for its PNG file's name.
struct HandlerResult {
    HandlerKind handler{};
    std::wstring request{};
    bool ok = false;
    std::wstring text{}; // the value, or what went wrong
    HRESULT code = S_OK;
    Picture picture{}; // only its dimensions where the value is no picture but tells some
    std::optional<unsigned> number{};
    std::wstring isoTime{};
    std::wstring pngSuffix{};
    std::wstring png{}; // where the picture was written, empty when it was not
};

// Each appends one result per request; a request that fails is a result, too.

// Explorer's thumbnails: a stream in, a bitmap of at most the given edge in pixels out.
void AskForThumbnails(HandlerRegistry& registry, const InputFile& file, std::span<const unsigned> edges,
                      std::vector<HandlerResult>& results);
// The property system: a stream in, each property that the store counts out.
void AskForProperties(HandlerRegistry& registry, const InputFile& file, std::vector<HandlerResult>& results);
// Older hosts: a path in, a bitmap out of a second thread, and the file's date.
void AskForExtractedImage(HandlerRegistry& registry, const InputFile& file,
                          std::vector<HandlerResult>& results);
// Explorer's icons: a path in, both icons out.
inline constexpr unsigned largeIconEdge = 32;
inline constexpr unsigned smallIconEdge = 16;
void AskForIcons(HandlerRegistry& registry, const InputFile& file, std::vector<HandlerResult>& results);
// A detail view's column: the file's path and attributes in, the value out.
void AskForColumn(HandlerRegistry& registry, const InputFile& file, std::vector<HandlerResult>& results);

} // namespace vantrel::tools
