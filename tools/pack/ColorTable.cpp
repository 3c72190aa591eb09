#include "tools/pack/ColorTable.h"

#include "tools/terminal/Failure.h"

#include <algorithm>
#include <limits>

namespace vantrel::tools {

namespace {

constexpr std::uint64_t largestSample = 1U << 18; // pixels

int Distance(Color a, Color b) {
    const int red = a.red - b.red;
    const int green = a.green - b.green;
    const int blue = a.blue - b.blue;
    return 3 * red * red + 6 * green * green + blue * blue; // about as much as the eye makes of each
}

} // namespace

ColorTable::ColorTable(std::span<const std::uint16_t> colors)
    : used_(std::min(colors.size(), entries_.size())), nearest_(65536, unknown) {
    std::copy_n(colors.begin(), used_, entries_.begin());
}

std::uint8_t ColorTable::NearestIndex(std::uint16_t rgb565) {
    std::uint16_t& known = nearest_[rgb565];
    if (known == unknown) {
        int best = std::numeric_limits<int>::max();
        for (std::size_t i = 0; i < used_; ++i) {
            const int distance = Distance(FromRgb565(rgb565), FromRgb565(entries_[i]));
            if (distance < best) {
                best = distance;
                known = static_cast<std::uint16_t>(i);
            }
        }
    }
    return static_cast<std::uint8_t>(known);
}

ColorTableBuilder::ColorTableBuilder(std::uint64_t totalPixels, std::optional<Color> reserved)
    : step_(totalPixels / largestSample + 1) {
    if (reserved) {
        reserved_ = ToRgb565(*reserved);
        distinct_.set(*reserved_);
    }
}

void ColorTableBuilder::Add(std::span<const Color> pixels) {
    for (const Color pixel : pixels) {
        distinct_.set(ToRgb565(pixel));
        if (untilSample_ == 0) {
            sample_.push_back(pixel);
            untilSample_ = step_;
        }
        --untilSample_;
    }
}

ColorTable ColorTableBuilder::Build(IWICImagingFactory& factory) const {
    std::vector<std::uint16_t> colors;
    if (IsExact()) {
        for (std::size_t color = 0; color < distinct_.size(); ++color)
            if (distinct_.test(color))
                colors.push_back(static_cast<std::uint16_t>(color));
        return ColorTable(colors);
    }

    constexpr std::wstring_view step = L"cannot choose the colour table";
    // WIC's interface wants a pointer to bytes that it may write, though it only copies them.
    std::vector<Color> bytes = sample_;
    const auto size = static_cast<UINT>(bytes.size() * sizeof(Color));
    ComPtr<IWICBitmap> bitmap;
    Check(factory.CreateBitmapFromMemory(static_cast<UINT>(bytes.size()), 1, GUID_WICPixelFormat32bppBGR,
                                         size, size, reinterpret_cast<BYTE*>(bytes.data()),
                                         bitmap.GetAddressOf()),
          step);
    ComPtr<IWICPalette> palette;
    Check(factory.CreatePalette(palette.GetAddressOf()), step);
    const UINT wanted = reserved_ ? zmi::colorTableEntries - 1 : zmi::colorTableEntries;
    Check(palette->InitializeFromBitmap(bitmap.Get(), wanted, FALSE), step);
    std::array<WICColor, zmi::colorTableEntries> chosen{};
    UINT count = 0;
    Check(palette->GetColors(wanted, chosen.data(), &count), step);

    if (reserved_)
        colors.push_back(*reserved_);
    for (UINT i = 0; i < count; ++i)
        colors.push_back(ToRgb565({.blue = static_cast<std::uint8_t>(chosen[i]),
                                   .green = static_cast<std::uint8_t>(chosen[i] >> 8),
                                   .red = static_cast<std::uint8_t>(chosen[i] >> 16),
                                   .alpha = 255}));
    std::ranges::sort(colors);
    colors.erase(std::unique(colors.begin(), colors.end()), colors.end());
    return ColorTable(colors);
}

} // namespace vantrel::tools
