// What PaintFrame needs of a bitmap surface, in plain memory, so that painting runs without Windows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vantrel {

enum class BitmapKind { Dib };

class BitmapSurface {
public:
    bool Create(std::uint32_t width, std::uint32_t height, BitmapKind) {
        // Like a DIB section: none without pixels, none of a size that can't be had.
        const std::size_t count = std::size_t{width} * height;
        words_.assign(count <= mostPixels ? count : 0, 0);
        return true;
    }
    std::uint32_t* Bits() { return words_.empty() ? nullptr : words_.data(); }

    static constexpr std::size_t mostPixels = 0x1000000;

private:
    std::vector<std::uint32_t> words_;
};

} // namespace vantrel
