// The frames of a ZMI file one by one, as their records stand in it: for tools, which want what can be had of
// a file that does not load as a whole.
#pragma once

#include "codec/ByteSource.h"
#include "codec/PayloadReader.h"
#include "codec/ZmiFormat.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace vantrel {

// What a file lacks to have frames.
enum class FileFault {
    None,
    FileHeader,  // it is no ZMI picture, or not as long as its header says
    ImageHeader, // which the payload does not hold, as with the next two
    FrameTable,
    FrameRecords,
    NoFrame, // its frame table is empty
};

// What a frame lacks to be shown. With one of the first two the file does not load.
enum class FrameFault {
    None,
    ColourTable, // lies outside the payload
    Pixels,      // lie outside the payload
    ReservedMode,
    NoColourTable, // it wants one, and its file is of a mode that has none
    TooFewPixels,  // its own mode takes more bytes than the file's gives it
    Empty,         // it has no pixels
};

struct FileFrame {
    FrameRecord record;           // as in the file
    std::uint32_t paletteOffset;  // of the colour table by which it is shown; 0: none
    std::uint64_t pixelByteCount; // that it takes in the file
    FrameFault fault;
};

// Takes a row of opaque words 0xFFRRGGBB, with alpha 0 in pixels of the frame's transparent colour. The words
// are only there during the call.
using RowTaker = std::function<void(const std::uint32_t* words)>;

// Holds one window over the records, and another over the pixels while they are converted, however many
// frames there are and however large they are.
class FrameReader {
public:
    // Reads the headers. The source outlives the reader.
    explicit FrameReader(ByteSource& source);

    FileFault Fault() const { return fault_; }
    // Zeros as far as they could not be read. The image header of a file without a picture says what the
    // blank picture has.
    const FileHeader& File() const { return file_; }
    const ImageHeader& Image() const { return image_; }
    const FrameTableHeader& Table() const { return table_; }
    // 0 where a fault is.
    std::uint16_t FrameCount() const {
        return fault_ == FileFault::None ? table_.frameCount : std::uint16_t{0};
    }

    // The frame at an index below FrameCount(), without its pixels; nothing when its record can't be read.
    std::optional<FileFrame> Frame(std::uint16_t index);
    // Gives out the rows of a frame without a fault, the top one first. The first frame is shown with the
    // image header's colour table, any other with its record's. False when something can't be read; rows
    // were given out then. Passes on what takeRow throws.
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
