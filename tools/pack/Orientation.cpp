#include "tools/pack/Orientation.h"

#include <array>

namespace vantrel::tools {

Orientation OrientationFromExif(unsigned number) {
    constexpr auto known = std::to_array<Orientation>({
        {},
        {.mirroredX = true},
        {.mirroredX = true, .mirroredY = true},
        {.mirroredY = true},
        {.transposed = true},
        {.mirroredY = true, .transposed = true},
        {.mirroredX = true, .mirroredY = true, .transposed = true},
        {.mirroredX = true, .transposed = true},
    });
    return number >= 1 && number <= known.size() ? known[number - 1] : Orientation{};
}

} // namespace vantrel::tools
