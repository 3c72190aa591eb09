#include "tools/pack/RowEncoder.h"

#include <algorithm>
#include <utility>

namespace vantrel::tools {

namespace {

std::uint8_t OverWhite(unsigned channel, unsigned alpha) {
    return static_cast<std::uint8_t>((channel * alpha + 255 * (255 - alpha) + 127) / 255);
}

Color ToGray(Color color) {
    const auto gray =
        static_cast<std::uint8_t>((color.red * 299 + color.green * 587 + color.blue * 114) / 1000);
    return {.blue = gray, .green = gray, .red = gray, .alpha = 255};
}

std::uint8_t AddError(int channel, int sixteenths) {
    return static_cast<std::uint8_t>(std::clamp(channel + sixteenths / 16, 0, 255));
}

} // namespace

bool Flatten(std::span<Color> pixels, std::optional<Color> transparent) {
    bool isFilled = false;
    for (Color& pixel : pixels) {
        const unsigned alpha = std::exchange(pixel.alpha, std::uint8_t{255});
        if (transparent) {
            if (alpha < 128 || pixel == *transparent)
                pixel = {transparent->blue, transparent->green, transparent->red, 0};
        } else if (alpha < 255) {
            isFilled = true;
            for (std::uint8_t* channel : {&pixel.blue, &pixel.green, &pixel.red})
                *channel = OverWhite(*channel, alpha);
        }
    }
    return isFilled;
}

RowEncoder::RowEncoder(PixelMode mode, PaletteSearch* palette, bool dither)
    : mode_(mode), palette_(palette), dither_(dither) {}

void RowEncoder::StartFrame(std::uint16_t width, std::optional<std::uint32_t> transparentKey) {
    transparentKey_ = transparentKey;
    thisRow_.assign(width + std::size_t{2}, Error{});
    nextRow_ = thisRow_;
}

void RowEncoder::Encode(std::span<const Color> row, std::vector<std::byte>& bytes) {
    std::ranges::fill(nextRow_, Error{});
    unsigned packed = 0;
    for (std::size_t x = 0; x < row.size(); ++x) {
        std::uint32_t value = transparentKey_.value_or(0);
        if (row[x].alpha != 0) {
            const Color source = mode_ == PixelMode::Monochrome ? ToGray(row[x]) : row[x];
            const Error& error = thisRow_[x + 1];
            const Color wanted = {.blue = AddError(source.blue, error[0]),
                                  .green = AddError(source.green, error[1]),
                                  .red = AddError(source.red, error[2]),
                                  .alpha = 255};
            Color shown{};
            value = Choose(wanted, shown);
            if (dither_) {
                const Error missed = {wanted.blue - shown.blue, wanted.green - shown.green,
                                      wanted.red - shown.red};
                for (std::size_t c = 0; c < missed.size(); ++c) {
                    thisRow_[x + 2][c] += 7 * missed[c];
                    nextRow_[x][c] += 3 * missed[c];
                    nextRow_[x + 1][c] += 5 * missed[c];
                    nextRow_[x + 2][c] += missed[c];
                }
            }
        }

        if (mode_ == PixelMode::Monochrome) {
            packed |= value << (7 - x % 8);
            if (x % 8 == 7 || x + 1 == row.size()) {
                bytes.push_back(static_cast<std::byte>(packed));
                packed = 0;
            }
            continue;
        }
        bytes.push_back(static_cast<std::byte>(value));
        if (mode_ == PixelMode::Rgb565)
            bytes.push_back(static_cast<std::byte>(value >> 8));
    }
    std::swap(thisRow_, nextRow_);
}

std::uint16_t RowEncoder::Choose(Color color, Color& shown) {
    switch (mode_) {
    case PixelMode::Monochrome: {
        const bool black = color.green < 128;
        shown = FromRgb565(black ? 0 : 0xFFFF);
        return black ? 1 : 0;
    }
    case PixelMode::Indexed: {
        const std::uint8_t index = palette_->NearestIndex(ToRgb565(color));
        shown = FromRgb565(palette_->Entries().colors[index]);
        return index;
    }
    default:
        const std::uint16_t rgb565 = transparentKey_
                                         ? ToRgb565Except(color, static_cast<std::uint16_t>(*transparentKey_))
                                         : ToRgb565(color);
        shown = FromRgb565(rgb565);
        return rgb565;
    }
}

} // namespace vantrel::tools
