#include "tools/unpack/FrameList.h"

#include "tools/terminal/CommandLine.h"

#include <algorithm>

namespace vantrel::tools {

FrameList::FrameList(std::wstring_view text) {
    constexpr unsigned most = 65535;
    for (const std::wstring& item : SplitList(text)) {
        const std::size_t dash = std::min(item.find(L'-'), item.size());
        const unsigned first = ParseNumber(L"--frames", item.substr(0, dash), 1, most);
        const unsigned last =
            dash == item.size() ? first : ParseNumber(L"--frames", item.substr(dash + 1), 1, most);
        if (last < first)
            throw UsageError(L"--frames " + item + L" is backwards");
        ranges_.emplace_back(first, last);
    }
}

bool FrameList::Contains(unsigned number) const {
    return ranges_.empty() || std::ranges::any_of(ranges_, [number](const auto& range) {
               return number >= range.first && number <= range.second;
           });
}

unsigned FrameList::Last() const {
    return ranges_.empty() ? 0 : std::ranges::max(ranges_, {}, &Range::second).second;
}

} // namespace vantrel::tools
