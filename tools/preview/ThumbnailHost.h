// Explorer's side of the thumbnail provider: a stream in, a bitmap of at most the given edge out.
#pragma once

#include "tools/preview/HandlerHost.h"

namespace vantrel::tools {

class ThumbnailHost : public HandlerHost {
public:
    ThumbnailHost(HandlerRegistry& registry, std::vector<unsigned> sizes)
        : HandlerHost(registry, HandlerKind::Thumbnail), sizes_(std::move(sizes)) {}

    void Ask(const InputFile& file, std::vector<HandlerResult>& results) override;

private:
    std::vector<unsigned> sizes_; // edges in pixels
};

} // namespace vantrel::tools
