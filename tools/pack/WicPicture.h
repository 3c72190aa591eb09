// A picture file as WIC reads it: frames as stored, in 32bppBGRA, and their metadata.
#pragma once

#include "tools/picture/Rgb565.h"
#include "tools/picture/WicFactory.h"
#include "tools/terminal/FileName.h"

#include <filesystem>
#include <set>
#include <span>
#include <string>

namespace vantrel::tools {

// One frame. All operations but Number throw Failure.
class WicFrame {
public:
    // The name is used in error messages.
    WicFrame(IWICImagingFactory& factory, ComPtr<IWICBitmapFrameDecode> frame, std::wstring name);

    UINT Width() const { return width_; } // pixels
    UINT Height() const { return height_; }
    const std::wstring& Name() const { return name_; }

    // An integer from the metadata, by a WIC metadata query; 0 if there is none.
    unsigned Number(const wchar_t* query) const;
    // Copies an area, row by row.
    void CopyPixels(const WICRect& area, std::span<Color> pixels) const;

private:
    ComPtr<IWICBitmapFrameDecode> frame_;
    ComPtr<IWICBitmapSource> source_;
    std::wstring name_;
    UINT width_ = 0;
    UINT height_ = 0;
};

// An open file. All operations but Is and Number throw Failure.
class WicPicture {
public:
    WicPicture(ComPtr<IWICImagingFactory> factory, const std::filesystem::path& path);

    unsigned FrameCount() const { return frameCount_; } // at least 1
    const std::wstring& Name() const { return name_; }  // as the user gave it

    bool Is(const GUID& containerFormat) const;
    unsigned Number(const wchar_t* query) const;
    WicFrame Frame(unsigned index) const;

private:
    ComPtr<IWICImagingFactory> factory_;
    ComPtr<IWICBitmapDecoder> decoder_;
    std::wstring name_;
    unsigned frameCount_ = 0;
};

// Those of all decoders on this system, each with its dot.
std::set<std::wstring, NameOrder> DecodableExtensions(IWICImagingFactory& factory);

} // namespace vantrel::tools
