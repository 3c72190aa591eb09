// A ZMI file that is looked at frame by frame, and what is wrong with it in words.
#pragma once

#include "codec/FileSource.h"
#include "codec/FrameReader.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace vantrel::tools {

class ZmiFile {
public:
    // Throws Failure, which says why but not which, for a file that can't be opened; one that is broken can.
    explicit ZmiFile(const std::filesystem::path& path);
    ZmiFile(const ZmiFile&) = delete;
    ZmiFile& operator=(const ZmiFile&) = delete;

    FrameReader& Frames() { return frames_; }
    const FrameReader& Frames() const { return frames_; }
    std::uint64_t Size() const { return size_; }
    std::wstring Title() const;
    // The file offset of a frame's record; of the image header without a frame table.
    std::uint64_t RecordOffset(std::uint16_t index) const;

    // What is wrong with the file as a whole, and with a frame of it, and at which offset; empty when nothing
    // is. Frames count from 1 in words.
    std::wstring Fault() const;
    std::wstring FaultOf(std::uint16_t index, const FileFrame& frame) const;

private:
    std::wstring HeaderFault() const;
    std::wstring Outside(const std::wstring& what, std::uint64_t offset, std::uint64_t count) const;

    std::filesystem::path path_;
    std::uint64_t size_;
    FileSource source_;
    FrameReader frames_;
};

// Why the Shell shows no picture of the file; nothing when it shows one, whose size in pixels is then stored.
std::optional<std::wstring> FindFault(const std::filesystem::path& path, unsigned* width = nullptr,
                                      unsigned* height = nullptr);

// Digits in groups of three, as sizes and offsets are read best.
std::wstring Grouped(std::uint64_t number);

} // namespace vantrel::tools
