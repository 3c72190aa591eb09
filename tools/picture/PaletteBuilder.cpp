#include "tools/picture/PaletteBuilder.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vantrel::tools {

namespace {

using Channels = std::array<float, 3>;

// The pixels that share a 16-bit colour: their mean, and how many there are.
struct Bin {
    Channels color;
    float weight;
};

// Some of the bins, represented by one colour.
struct Box {
    explicit Box(std::span<Bin> all) : bins(all) {
        std::array<double, 3> sum{};
        std::array<double, 3> squares{};
        double weight = 0;
        for (const Bin& bin : bins) {
            weight += bin.weight;
            for (std::size_t c = 0; c < sum.size(); ++c) {
                sum[c] += double{bin.weight} * bin.color[c];
                squares[c] += double{bin.weight} * bin.color[c] * bin.color[c];
            }
        }
        double widest = -1;
        for (std::size_t c = 0; c < sum.size(); ++c) {
            mean[c] = static_cast<float>(sum[c] / weight);
            const double spread = squares[c] - sum[c] * sum[c] / weight;
            missed += spread;
            if (spread > widest) {
                widest = spread;
                axis = c;
            }
        }
        if (bins.size() < 2)
            missed = 0;
    }

    std::span<Bin> bins;
    Channels mean{};
    double missed = 0;    // squared distance of all pixels from the mean
    std::size_t axis = 0; // the channel with the largest share of it
};

// Splits the box with the largest error at its mean, until there are enough boxes.
std::vector<Channels> SplitByVariance(std::span<Bin> bins, std::size_t wanted) {
    std::vector<Box> boxes = {Box(bins)};
    while (boxes.size() < wanted) {
        Box& worst = *std::ranges::max_element(boxes, {}, &Box::missed);
        if (worst.missed <= 0)
            break;
        // Not std::ranges::partition, whose result clang 14 cannot compile.
        const auto upper = std::partition(worst.bins.begin(), worst.bins.end(), [&](const Bin& bin) {
            return bin.color[worst.axis] <= worst.mean[worst.axis];
        });
        const auto lower = static_cast<std::size_t>(upper - worst.bins.begin());
        if (lower == 0 || lower == worst.bins.size()) { // its colours differ only by rounding
            worst.missed = 0;
            continue;
        }
        const Box second(worst.bins.subspan(lower));
        worst = Box(worst.bins.first(lower));
        boxes.push_back(second);
    }
    std::vector<Channels> means;
    means.reserve(boxes.size());
    for (const Box& box : boxes)
        means.push_back(box.mean);
    return means;
}

// Moves each colour to the mean of the bins nearest to it.
void Settle(std::span<const Bin> bins, std::vector<Channels>& colors) {
    std::array<std::vector<float>, 3> planes; // one per channel, so that the compiler can vectorise
    for (std::size_t c = 0; c < planes.size(); ++c)
        for (const Channels& color : colors)
            planes[c].push_back(color[c]);
    struct Sum {
        std::array<double, 3> color{};
        double weight = 0;
    };
    std::vector<Sum> sums(colors.size());
    std::vector<float> distances(colors.size());
    for (const Bin& bin : bins) {
        for (std::size_t i = 0; i < distances.size(); ++i) {
            const float blue = bin.color[0] - planes[0][i];
            const float green = bin.color[1] - planes[1][i];
            const float red = bin.color[2] - planes[2][i];
            distances[i] = blue * blue + green * green + red * red;
        }
        Sum& sum = sums[static_cast<std::size_t>(std::ranges::min_element(distances) - distances.begin())];
        sum.weight += bin.weight;
        for (std::size_t c = 0; c < bin.color.size(); ++c)
            sum.color[c] += double{bin.weight} * bin.color[c];
    }
    for (std::size_t i = 0; i < colors.size(); ++i)
        if (sums[i].weight > 0)
            for (std::size_t c = 0; c < colors[i].size(); ++c)
                colors[i][c] = static_cast<float>(sums[i].color[c] / sums[i].weight);
}

} // namespace

void PaletteBuilder::StartFrame(std::optional<std::uint16_t> key) {
    key_ = key;
    if (key)
        seen_[*key].isKey = true;
}

void PaletteBuilder::Add(std::span<const Color> pixels) {
    for (const Color pixel : pixels)
        if (pixel.alpha != 0) {
            const std::uint16_t color = ToRgb565(pixel);
            Seen& seen = seen_[color];
            ++seen.count;
            seen.blue += pixel.blue;
            seen.green += pixel.green;
            seen.red += pixel.red;
            seen.needsTwoEntries |= color == key_;
        }
}

bool PaletteBuilder::IsExact() const {
    std::size_t entries = 0;
    for (const Seen& seen : seen_)
        entries += (seen.count > 0 || seen.isKey ? 1U : 0U) + (seen.needsTwoEntries ? 1U : 0U);
    return entries <= paletteEntries;
}

PaletteSearch PaletteBuilder::Build() const {
    const bool isExact = IsExact();
    std::vector<std::uint16_t> colors;
    std::vector<std::uint16_t> keys;
    for (std::size_t i = 0; i < seen_.size(); ++i) {
        const auto color = static_cast<std::uint16_t>(i);
        const Seen& seen = seen_[i];
        if (isExact && (seen.count > 0 || seen.isKey))
            colors.push_back(color);
        if (isExact ? seen.needsTwoEntries : seen.isKey && keys.empty())
            keys.push_back(color);
    }
    if (!isExact)
        colors = Reduce(paletteEntries - keys.size());
    return {colors, keys, !isExact};
}

std::vector<std::uint16_t> PaletteBuilder::Reduce(std::size_t room) const {
    std::vector<Bin> bins;
    for (const Seen& seen : seen_) {
        if (seen.count == 0)
            continue;
        const auto count = static_cast<double>(seen.count);
        const auto mean = [&](std::uint64_t sum) {
            return static_cast<float>(static_cast<double>(sum) / count);
        };
        bins.push_back({.color = {mean(seen.blue), mean(seen.green), mean(seen.red)},
                        .weight = static_cast<float>(count)});
    }
    std::vector<std::uint16_t> chosen;
    if (bins.empty())
        return chosen;
    std::vector<Channels> colors = SplitByVariance(bins, room);
    constexpr int passes = 6; // more gain almost nothing
    for (int i = 0; i < passes; ++i)
        Settle(bins, colors);
    for (const Channels& color : colors)
        chosen.push_back(ToRgb565({.blue = static_cast<std::uint8_t>(std::lround(color[0])),
                                   .green = static_cast<std::uint8_t>(std::lround(color[1])),
                                   .red = static_cast<std::uint8_t>(std::lround(color[2])),
                                   .alpha = 255}));
    std::ranges::sort(chosen);
    chosen.erase(std::unique(chosen.begin(), chosen.end()), chosen.end());
    return chosen;
}

} // namespace vantrel::tools
