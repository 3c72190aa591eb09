#include "benchmarks/Pictures.h"

#include <windows.h>

#include <cstring>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace vantrel::bench {

namespace {

template <class Structure>
void Append(Bytes& bytes, const Structure& structure) {
    bytes.resize(bytes.size() + sizeof structure);
    std::memcpy(bytes.data() + bytes.size() - sizeof structure, &structure, sizeof structure);
}

RGBQUAD Quad(std::uint16_t color) {
    return {static_cast<BYTE>(color << 3), static_cast<BYTE>(color >> 5 << 2),
            static_cast<BYTE>(color >> 11 << 3), 0};
}

// `pixels` holds ZMI rows, which only need padding to 32 bits and flipping.
Bytes MakeBmp(unsigned mode, std::uint16_t width, std::uint16_t height, const Bytes& pixels,
              const tests::Colors& palette) {
    Bytes colors;
    if (mode == 0) {
        Append(colors, RGBQUAD{255, 255, 255, 0});
        Append(colors, RGBQUAD{});
    } else if (mode == 1) {
        for (const std::uint16_t color : palette)
            Append(colors, Quad(color));
    } else {
        for (const DWORD mask : {0xF800u, 0x07E0u, 0x001Fu})
            Append(colors, mask);
    }
    const std::size_t rowBytes = tests::PixelBytes(mode, width, 1);
    const std::size_t stride = (rowBytes + 3) / 4 * 4;

    BITMAPFILEHEADER file{};
    file.bfType = 0x4D42;
    file.bfOffBits = static_cast<DWORD>(sizeof file + sizeof(BITMAPINFOHEADER) + colors.size());
    file.bfSize = static_cast<DWORD>(file.bfOffBits + stride * height);
    BITMAPINFOHEADER info{};
    info.biSize = sizeof info;
    info.biWidth = width;
    info.biHeight = height;
    info.biPlanes = 1;
    info.biBitCount = mode == 0 ? 1 : mode == 1 ? 8 : 16;
    info.biCompression = mode == 2 ? BI_BITFIELDS : BI_RGB;

    Bytes bmp;
    bmp.reserve(file.bfSize);
    Append(bmp, file);
    Append(bmp, info);
    bmp.insert(bmp.end(), colors.begin(), colors.end());
    for (std::size_t y = height; y-- > 0;) {
        const std::uint8_t* const row = pixels.data() + y * rowBytes;
        bmp.insert(bmp.end(), row, row + rowBytes);
        bmp.resize(bmp.size() + stride - rowBytes);
    }
    return bmp;
}

Bytes PatternPixels(unsigned mode, std::uint16_t width, std::uint16_t height) {
    Bytes pixels(tests::PixelBytes(mode, width, height));
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = tests::PatternByte(mode, i);
    return pixels;
}

} // namespace

Picture MakePicture(unsigned mode, std::uint16_t width, std::uint16_t height) {
    Bytes pixels = PatternPixels(mode, width, height);
    tests::ZmiBuilder builder{.mode = mode};
    Bytes bmp = MakeBmp(mode, width, height, pixels, builder.palette);
    builder.frames.push_back({.width = width, .height = height, .pixels = std::move(pixels)});
    return {width, height, builder.Build(), std::move(bmp)};
}

Picture MakeBlankDefault() {
    const tests::ZmiBuilder builder;
    return {1024, 600, builder.Build(), MakeBmp(0, 1024, 600, Bytes(128 * 600), builder.palette)};
}

Picture MakeAnimation(std::size_t frames, std::uint16_t width, std::uint16_t height) {
    tests::ZmiBuilder builder{.mode = 2, .frameTable = true};
    builder.frames.assign(frames, {.width = width, .height = height});
    return {width, height, builder.Build(), {}};
}

ScratchFolder::ScratchFolder()
    : path_(std::filesystem::temp_directory_path() /
            ("vantrel-bench-" + std::to_string(GetCurrentProcessId()))) {
    std::filesystem::create_directories(path_);
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::wstring ScratchFolder::Write(const std::wstring& name, const Bytes& bytes) const {
    const std::filesystem::path path = path_ / name;
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush())
        throw std::runtime_error("cannot write " + path.string());
    return path.wstring();
}

} // namespace vantrel::bench
