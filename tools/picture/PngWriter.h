// PNG files, written row by row.
#pragma once

#include "tools/picture/WicFactory.h"
#include "tools/terminal/OutputFile.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vantrel::tools {

// A line of text in a PNG file. The keyword is Latin-1, 1 to 79 characters; PNG's own list has Title,
// Description, Software and some more.
struct PngText {
    std::string keyword;
    std::wstring text;
};

// Keeps at most one row in memory. All operations throw Failure.
class PngWriter {
public:
    // The output must outlive the writer, and the caller commits it. An opaque picture is stored without
    // alpha. Control characters in texts are made visible.
    PngWriter(OutputFile& output, unsigned width, unsigned height, bool isOpaque,
              const std::vector<PngText>& texts = {});
    ~PngWriter();

    // Rows from top to bottom, each as `width` words 0xAARRGGBB, not premultiplied.
    void WriteRow(const std::uint32_t* words);
    // Call when all rows are written.
    void Finish();

private:
    class Stream;

    void Check(HRESULT result) const;

    OutputFile& output_;
    unsigned width_;
    bool isOpaque_;
    std::unique_ptr<Stream> stream_; // outlives the encoder, which refers to it
    std::string texts_;
    ComPtr<IWICBitmapEncoder> encoder_;
    ComPtr<IWICBitmapFrameEncode> frame_;
    std::vector<BYTE> row_;
};

} // namespace vantrel::tools
