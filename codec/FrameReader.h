// The headers and frames of a ZMI file's payload one by one, as recorded in the file: for `decode`, and for
// tools, which want whatever can be read from a file that does not load as a whole.
#pragma once

#include "codec/PayloadReader.h"
#include "codec/ZmiFormat.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace vantrel {

// Why a payload has no frames. With any fault but the last the file does not load.
enum class FileFault {
    None,
    ImageHeader, // outside the payload, as with the next two
    FrameTable,
    FrameRecords,
    NoFrame, // the frame table is empty
};

// Why a frame can't be shown.
enum class FrameFault {
    None,
    Palette, // lies outside the payload, as with the next one
    Pixels,
    ReservedMode, // has no colours
    NoPalette,    // it needs one, but the file's mode has none
    TooFewPixels, // its own mode needs more bytes than the file's mode provides
    Empty,        // it has no pixels
};

// Whether the whole file does not load because of it.
constexpr bool PreventsLoading(FrameFault fault) {
    return fault == FrameFault::Palette || fault == FrameFault::Pixels;
}

struct FileFrame {
    FrameRecord record;           // as in the file
    std::uint32_t paletteOffset;  // of the palette used to show it; 0: none
    std::uint64_t pixelByteCount; // in the file; 0 for a file without a picture
    FrameFault fault;
};

// Receives a row of opaque words 0xFFRRGGBB, as many as the frame is wide, with alpha 0 in pixels of the
// frame's transparent colour. The words are valid only during the call.
using RowTaker = std::function<void(const std::uint32_t* words)>;

class FrameReader {
public:
    // Reads the headers and the first palette. The payload must outlive the reader.
    explicit FrameReader(PayloadReader& payload);

    FileFault Fault() const { return fault_; }
    // Zeros where they could not be read. The image header of a file without a picture has the blank
    // picture's values.
    const ImageHeader& Image() const { return image_; }
    const FrameTableHeader& Table() const { return table_; }
    // The palette that an indexed file's image header names; nullopt in other modes, or when it can't be
    // read.
    const std::optional<Palette>& FirstPalette() const { return firstPalette_; }
    // 0 if there is a fault.
    std::uint16_t FrameCount() const {
        return fault_ == FileFault::None ? table_.frameCount : std::uint16_t{0};
    }

    // All records in one read; false when they can't be read or one has a fault that prevents loading.
    bool ReadRecords(std::vector<FrameRecord>& records);
    // The frame at an index below FrameCount(), through the payload's window; nullopt when its record can't
    // be read.
    std::optional<FileFrame> Frame(std::uint16_t index);
    // Delivers the rows of a frame without a fault, the top one first, through a window of its own. The first
    // frame is shown with the first palette, any other with its record's. False when something can't be read,
    // possibly after some rows. Propagates what takeRow throws.
    bool Convert(const FileFrame& frame, const RowTaker& takeRow);

private:
    FileFault ReadHeaders();
    bool HasFrameTable() const { return (image_.flags & frameTableFlag) != 0; }
    std::int64_t RecordPosition(std::uint16_t index) const;
    std::uint32_t PaletteOffset(std::size_t index, const FrameRecord& record) const;
    std::uint64_t BytesOf(const FrameRecord& record) const;
    FrameFault FindOutside(const FrameRecord& record, std::uint32_t paletteOffset) const;
    FrameFault FaultOf(const FileFrame& frame) const;

    PayloadReader& payload_;
    ImageHeader image_{};
    std::optional<Palette> firstPalette_;
    FrameTableHeader table_{};
    FileFault fault_;
};

} // namespace vantrel
