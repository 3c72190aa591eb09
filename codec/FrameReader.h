// The frames of a ZMI file one by one, as recorded in the file: for tools, which want whatever can be read
// from a file that does not load as a whole.
#pragma once

#include "codec/ByteSource.h"
#include "codec/PayloadReader.h"
#include "codec/ZmiFormat.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace vantrel {

// Why a file has no frames.
enum class FileFault {
    None,
    FileHeader,  // not a ZMI picture, or not as long as its header says
    ImageHeader, // outside the payload, as with the next two
    FrameTable,
    FrameRecords,
    NoFrame, // the frame table is empty
};

// Why a frame can't be shown. With one of the first two faults the file does not load.
enum class FrameFault {
    None,
    Palette, // lies outside the payload
    Pixels,  // lie outside the payload
    ReservedMode,
    NoPalette,    // it needs one, but the file's mode has none
    TooFewPixels, // its own mode needs more bytes than the file's mode provides
    Empty,        // it has no pixels
};

struct FileFrame {
    FrameRecord record;           // as in the file
    std::uint32_t paletteOffset;  // of the colour table used to show it; 0: none
    std::uint64_t pixelByteCount; // in the file
    FrameFault fault;
};

// Receives a row of opaque words 0xFFRRGGBB, with alpha 0 in pixels of the frame's transparent colour. The
// words are valid only during the call.
using RowTaker = std::function<void(const std::uint32_t* words)>;

// Holds one window over the records, and another over the pixels while converting them, regardless of the
// number and size of the frames.
class FrameReader {
public:
    // Reads the headers. The source must outlive the reader.
    explicit FrameReader(ByteSource& source);

    FileFault Fault() const { return fault_; }
    // Zeros where they could not be read. The image header of a file without a picture has the blank
    // picture's values.
    const FileHeader& File() const { return file_; }
    const ImageHeader& Image() const { return image_; }
    const FrameTableHeader& Table() const { return table_; }
    // 0 if there is a fault.
    std::uint16_t FrameCount() const {
        return fault_ == FileFault::None ? table_.frameCount : std::uint16_t{0};
    }

    // The frame at an index below FrameCount(), without its pixels; nullopt when its record can't be read.
    std::optional<FileFrame> Frame(std::uint16_t index);
    // Delivers the rows of a frame without a fault, the top one first. The first frame is shown with the
    // image header's colour table, any other with its record's. False when something can't be read, possibly
    // after some rows. Propagates what takeRow throws.
    bool Convert(const FileFrame& frame, const RowTaker& takeRow);

private:
    FileFault ReadHeaders();
    FrameFault FaultOf(const FileFrame& frame) const;

    ByteSource& source_;
    std::optional<PayloadReader> payload_;
    FileHeader file_{};
    ImageHeader image_{};
    FrameTableHeader table_{};
    FileFault fault_;
};

} // namespace vantrel
