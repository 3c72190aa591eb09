// One frame's pixels, piece by piece, in the order in which a DecodedImage holds them.
#pragma once

#include "codec/DecodedImage.h"
#include "codec/PayloadReader.h"

#include <cstdint>

namespace vantrel {

class FramePixels {
public:
    // Bytes in all.
    virtual std::uint64_t Size() const = 0;
    // The next count bytes, which stay until the next call; null when they can't be read. No more than Size()
    // may be asked for in all, and pages (see toPageOrder) only band by band.
    virtual const std::uint8_t* Next(std::uint32_t count) = 0;

protected:
    ~FramePixels() = default;
};

// Pixels that stand in memory, and there outlive this.
class HeldFramePixels final : public FramePixels {
public:
    explicit HeldFramePixels(const ByteBuffer& bytes) : bytes_(bytes) {}

    std::uint64_t Size() const override { return bytes_.size(); }
    const std::uint8_t* Next(std::uint32_t count) override;

private:
    const ByteBuffer& bytes_;
    std::size_t position_ = 0;
};

// Pixels that pass through their file's window on the way and take no memory of their own.
class FileFramePixels final : public FramePixels {
public:
    // The image is decoded but for its pixels. Throws std::out_of_range when it has no such frame.
    FileFramePixels(PayloadReader& payload, const DecodedImage& image, std::size_t frameIndex);

    std::uint64_t Size() const override { return DecodedByteCount(mode_, width_, height_); }
    const std::uint8_t* Next(std::uint32_t count) override;

private:
    const std::uint8_t* View(std::uint32_t count);
    const std::uint8_t* NextBand();

    PayloadReader& payload_;
    PixelMode mode_;
    std::uint16_t width_;
    std::uint16_t height_;
    bool isBlank_; // zeros that stand in no file
    std::int64_t position_;
    unsigned row_ = 0;
    ByteBuffer band_;
};

} // namespace vantrel
