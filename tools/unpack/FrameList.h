// The frames that the user asked for.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

namespace vantrel::tools {

// Numbers count from 1. Empty means all frames.
class FrameList {
public:
    FrameList() = default;
    // Reads "1,3,5-8". Throws UsageError.
    explicit FrameList(std::wstring_view text);

    bool Contains(unsigned number) const;
    // The highest number in the list; 0 if empty.
    unsigned Last() const;

private:
    using Range = std::pair<unsigned, unsigned>; // first and last

    std::vector<Range> ranges_;
};

} // namespace vantrel::tools
