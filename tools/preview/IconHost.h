// Explorer's side of the icon handler: a path in, a large and a small icon out.
#pragma once

#include "tools/preview/HandlerHost.h"

namespace vantrel::tools {

class IconHost : public HandlerHost {
public:
    static constexpr WORD largeEdge = 32;
    static constexpr WORD smallEdge = 16;

    explicit IconHost(HandlerRegistry& registry) : HandlerHost(registry, HandlerKind::Icon) {}

    void Ask(const InputFile& file, std::vector<HandlerResult>& results) override;
};

} // namespace vantrel::tools
