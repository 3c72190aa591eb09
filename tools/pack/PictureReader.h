// Pictures of every kind that WIC reads, frame by frame and row by row.
#pragma once

#include "tools/pack/Rgb565.h"

#include <wincodec.h>
#include <windows.h>
#include <wrl/client.h>

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace vantrel::tools {

using Microsoft::WRL::ComPtr;

// WIC's factory. COM must be initialised on the thread. Throws Failure.
ComPtr<IWICImagingFactory> CreateWicFactory();

// One frame of an open picture, converted to 32bppBGRA.
class PictureFrame {
public:
    // The name is the one that errors give.
    PictureFrame(ComPtr<IWICBitmapSource> source, std::wstring name);

    // In pixels; never above 65,535, which is as much as the ZMI format can say.
    std::uint16_t Width() const { return width_; }
    std::uint16_t Height() const { return height_; }

    // Fills rows with whole rows from the given one on, top to bottom. Throws Failure.
    void ReadRows(unsigned firstRow, std::span<Color> rows) const;

private:
    ComPtr<IWICBitmapSource> source_;
    std::wstring name_;
    std::uint16_t width_ = 0;
    std::uint16_t height_ = 0;
};

// An open picture file. All operations throw Failure.
class PictureReader {
public:
    PictureReader(ComPtr<IWICImagingFactory> factory, const std::filesystem::path& path);

    unsigned FrameCount() const { return frameCount_; }
    PictureFrame Frame(unsigned index) const;

private:
    ComPtr<IWICImagingFactory> factory_;
    ComPtr<IWICBitmapDecoder> decoder_;
    std::wstring name_;
    unsigned frameCount_ = 0;
};

} // namespace vantrel::tools
