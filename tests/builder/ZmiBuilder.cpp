#include "tests/builder/ZmiBuilder.h"

#include <algorithm>
#include <string_view>

namespace vantrel::tests {

namespace {

void Append(Bytes& bytes, std::size_t count, std::uint32_t seed) {
    for (std::size_t i = 0; i < count; ++i)
        bytes.push_back(PatternByte(seed, i));
}

void Append(Bytes& bytes, const Colors& colors) {
    for (const std::uint16_t color : colors) {
        bytes.push_back(static_cast<std::uint8_t>(color & 255));
        bytes.push_back(static_cast<std::uint8_t>(color >> 8));
    }
}

} // namespace

std::uint32_t GetField(const Bytes& bytes, std::size_t base, Field field) {
    std::uint32_t value = 0;
    for (std::size_t i = field.width; i-- > 0;)
        value = value << 8 | bytes.at(base + field.offset + i);
    return value;
}

void SetField(Bytes& bytes, std::size_t base, Field field, std::uint32_t value) {
    for (std::size_t i = 0; i < field.width; ++i)
        bytes.at(base + field.offset + i) = static_cast<std::uint8_t>(value >> 8 * i);
}

void FramePayload(Bytes& file, std::uint32_t payloadAt) {
    constexpr std::string_view magic("zpix-zmi", 9);
    std::copy(magic.begin(), magic.end(), file.begin());
    std::copy_n(magic.begin(), 4, file.end() - 4);
    SetField(file, 0, file_header::version, 1);
    SetField(file, 0, file_header::headerSize, file_header::size);
    SetField(file, 0, file_header::kind, 1);
    SetField(file, 0, file_header::dataOffset, payloadAt);
    SetField(file, 0, file_header::dataSize, static_cast<std::uint32_t>(file.size() - 4 - payloadAt));
}

std::uint8_t PatternByte(std::uint32_t seed, std::size_t i) {
    std::uint64_t mixed = (i + 1) * 0x9E3779B97F4A7C15u + seed * 0xD1B54A32D192ED03u;
    mixed = (mixed ^ mixed >> 31) * 0xBF58476D1CE4E5B9u;
    return static_cast<std::uint8_t>(mixed >> 56);
}

Colors PatternColors(std::uint32_t seed) {
    Colors colors;
    for (std::size_t i = 0; i < colors.size(); ++i)
        colors[i] = static_cast<std::uint16_t>(PatternByte(seed, 2 * i) << 8 | PatternByte(seed, 2 * i + 1));
    return colors;
}

std::uint32_t Rgb(std::uint32_t color565) {
    const auto channel = [color565](unsigned lowest, unsigned bits) -> std::uint32_t {
        const unsigned most = (1u << bits) - 1;
        const std::uint32_t value = (color565 >> lowest) & most;
        return value == most ? 255 : value << (8 - bits);
    };
    return channel(11, 5) * 0x10000 + channel(5, 6) * 0x100 + channel(0, 5);
}

std::size_t PixelBytes(unsigned mode, std::uint32_t width, std::uint32_t height) {
    const std::size_t rowBytes = mode == 0 ? (width + 7) / 8 : mode == 2 ? width * 2 : width;
    return rowBytes * height;
}

std::uint8_t ZmiBuilder::Flags() const {
    return static_cast<std::uint8_t>(mode << 3 | (HasFrameTable() ? 0x01 : 0) | (transparentKey ? 0x20 : 0));
}

Bytes ZmiBuilder::Build() const {
    const auto number = [](std::size_t value) { return static_cast<std::uint32_t>(value); };
    Bytes file;
    Append(file, PayloadAt(), 1);
    Append(file, image_header::size, 2);
    for (std::size_t i = 0; i < 34; ++i)
        file[PayloadAt() + i] = i < title.size() ? static_cast<std::uint8_t>(title[i]) : 0;
    if (mode == 1)
        Append(file, palette);
    SetField(file, PayloadAt(), image_header::paletteOffset, mode == 1 ? number(PaletteAt()) : 0xFFFFFFFF);
    SetField(file, PayloadAt(), image_header::flags, Flags());
    if (transparentKey)
        SetField(file, PayloadAt(), image_header::transparentKey, *transparentKey);
    if (!frames.empty()) {
        SetField(file, PayloadAt(), image_header::width, frames[0].width);
        SetField(file, PayloadAt(), image_header::height, frames[0].height);
    }
    SetField(file, PayloadAt(), image_header::pixelOffset, HasFrameTable() ? number(FrameTableAt()) : 0);
    if (HasFrameTable()) {
        Append(file, frame_table::size + frames.size() * frame_record::size, 3);
        SetField(file, FrameTableAt(), frame_table::frameCount, number(frames.size()));
    }
    std::size_t pixelsAt = 0;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const ZmiFrame& frame = frames[i];
        const std::size_t paletteAt = frame.palette ? file.size() : PaletteAt();
        if (frame.palette)
            Append(file, *frame.palette);
        if (!sharePixels || i == 0) {
            pixelsAt = file.size();
            for (std::size_t k = 0; k < PixelBytes(mode, frame.width, frame.height); ++k)
                file.push_back(frame.pixels ? frame.pixels->at(k) : PatternByte(number(i) + 100, k));
        }
        if (!HasFrameTable()) {
            SetField(file, PayloadAt(), image_header::pixelOffset, number(pixelsAt));
            continue;
        }
        const std::size_t record = RecordAt(i);
        SetField(file, record, frame_record::dataOffset, number(pixelsAt));
        SetField(file, record, frame_record::paletteOffset, number(paletteAt));
        SetField(file, record, frame_record::transparentKey, frame.transparentKey);
        SetField(file, record, frame_record::flags, frame.flags.value_or(Flags()));
        SetField(file, record, frame_record::width, frame.width);
        SetField(file, record, frame_record::height, frame.height);
    }
    Append(file, rest, 4);

    file.resize(file.size() + 4);
    FramePayload(file, number(PayloadAt()));
    file.insert(file.end(), behindTrailer.begin(), behindTrailer.end());
    return file;
}

} // namespace vantrel::tests
