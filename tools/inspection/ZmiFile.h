// A ZMI file inspected frame by frame, and what is wrong with it in words.
#pragma once

#include "codec/FrameReader.h"
#include "codec/windows/FileSource.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace vantrel::tools {

class ZmiFile {
public:
    // Throws Failure, whose message doesn't name the file, if the file can't be opened; a broken file can.
    explicit ZmiFile(const std::filesystem::path& path);
    ZmiFile(const ZmiFile&) = delete;
    ZmiFile& operator=(const ZmiFile&) = delete;

    // Zeros if it can't be read.
    const FileHeader& Header() const { return header_; }
    FrameReader& Frames() { return frames_; }
    const FrameReader& Frames() const { return frames_; }
    std::uint64_t Size() const { return size_; }
    // False if there is no complete header with the format's first bytes; nothing else is then known.
    bool IsZmi() const;
    std::wstring Title() const;
    // The file offset of a frame's record, or of the image header if there is no frame table.
    std::uint64_t RecordOffset(std::uint16_t index) const;

    // What is wrong with the file as a whole, or with one frame, and at which offset; empty if nothing is.
    // Messages count frames from 1.
    std::wstring Fault() const;
    std::wstring FaultOf(std::uint16_t index, const std::optional<FileFrame>& frame) const;

private:
    std::wstring HeaderFault() const;
    std::wstring Outside(const std::wstring& what, std::uint64_t offset, std::uint64_t count) const;

    std::filesystem::path path_;
    std::uint64_t size_;
    FileSource source_;
    FileHeader header_;
    std::optional<PayloadReader> payload_;
    bool isOpen_; // header and trailer are valid; otherwise the payload is empty
    FrameReader frames_;
};

// Opens a file. Returns what is wrong with it as a whole, or why it can't be opened and stays absent; empty
// if nothing is wrong.
std::wstring OpenZmiFile(const std::filesystem::path& path, std::optional<ZmiFile>& file);

// Why the Shell shows no picture of the file; nothing if it shows one, unless it is too thin. The first
// frame's size in pixels is then stored.
std::optional<std::wstring> FindFault(const std::filesystem::path& path, unsigned& width, unsigned& height);

// The smallest thumbnail, by its longer side in pixels, in which such a picture is not too thin to be seen.
unsigned SmallestThumbnail(unsigned width, unsigned height);

} // namespace vantrel::tools
