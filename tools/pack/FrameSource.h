// The frames of one input file.
#pragma once

#include "tools/pack/ZmiWriter.h"
#include "tools/picture/Rgb565.h"

#include <functional>
#include <optional>
#include <span>
#include <string>

namespace vantrel::tools {

// Roughly the number of bytes of pixels held in memory at a time, however large a picture is.
inline constexpr std::size_t bandBytes = 1U << 20;

// Receives whole rows, top to bottom, several at a time, and may change them.
using RowsTaker = std::function<void(std::span<Color> rows)>;

// All operations throw Failure.
class FrameSource {
public:
    virtual ~FrameSource() = default;

    virtual unsigned FrameCount() const = 0;
    // True if the file has more frames than that.
    virtual bool LacksFrames() const { return false; }
    // As in the file, in the ANSI code page; nothing if this kind of file has none.
    virtual std::optional<std::string> Title() const { return std::nullopt; }
    // With the 16-bit colour of transparent pixels if they are to keep it: all others are then opaque.
    virtual ZmiFrame Frame(unsigned index) = 0;
    virtual void ReadRows(unsigned index, const RowsTaker& take) = 0;
};

} // namespace vantrel::tools
