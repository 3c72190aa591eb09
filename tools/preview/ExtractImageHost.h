// An older host's side of the extract-image handler: a path in, a bitmap out of a second thread.
#pragma once

#include "tools/preview/HandlerHost.h"

namespace vantrel::tools {

class ExtractImageHost : public HandlerHost {
public:
    explicit ExtractImageHost(HandlerRegistry& registry) : HandlerHost(registry, HandlerKind::ExtractImage) {}

    void Ask(const InputFile& file, std::vector<HandlerResult>& results) override;
};

} // namespace vantrel::tools
