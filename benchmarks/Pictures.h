// The pictures that are measured: each as a ZMI file and, where possible, as a BMP file.
#pragma once

#include "tests/builder/ZmiBuilder.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace vantrel::bench {

using tests::Bytes;

struct Picture {
    std::uint16_t width;
    std::uint16_t height;
    Bytes zmi;
    Bytes bmp; // the same pixels; empty for several frames
};

// Pixel modes: 0 is 1-bit, 1 is 8-bit, 2 is 5-6-5.
Picture MakePicture(unsigned mode, std::uint16_t width, std::uint16_t height);
// 1024 x 600 without any pixels in the file.
Picture MakeBlankDefault();
// Frames in 5-6-5, all of the same size.
Picture MakeAnimation(std::size_t frames, std::uint16_t width, std::uint16_t height);

// A new temporary folder, removed with its files on destruction.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // Writes a file and returns its path. Throws std::runtime_error.
    std::wstring Write(const std::wstring& name, const Bytes& bytes) const;

private:
    std::filesystem::path path_;
};

} // namespace vantrel::bench
