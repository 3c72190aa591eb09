// The property system's side of the property store: a stream in, each property that the store counts out.
#pragma once

#include "tools/preview/HandlerHost.h"

namespace vantrel::tools {

class PropertyHost : public HandlerHost {
public:
    explicit PropertyHost(HandlerRegistry& registry) : HandlerHost(registry, HandlerKind::Properties) {}

    void Ask(const InputFile& file, std::vector<HandlerResult>& results) override;
};

} // namespace vantrel::tools
