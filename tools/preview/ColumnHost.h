// A detail view's side of the column provider: the file's path and attributes in, each column's value out.
#pragma once

#include "tools/preview/HandlerHost.h"

namespace vantrel::tools {

class ColumnHost : public HandlerHost {
public:
    explicit ColumnHost(HandlerRegistry& registry) : HandlerHost(registry, HandlerKind::Column) {}

    void Ask(const InputFile& file, std::vector<HandlerResult>& results) override;
};

} // namespace vantrel::tools
