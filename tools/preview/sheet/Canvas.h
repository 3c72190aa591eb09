// A page to draw on: filled boxes, pictures and text in a 32-bit bitmap.
#pragma once

#include "support/Handles.h"
#include "tools/preview/Picture.h"

#include <array>
#include <cstdint>
#include <string>

namespace vantrel::tools {

enum class TextStyle { Heading, Title, Body, Small };

class Canvas {
public:
    // Throws Failure when there is no memory for so large a page.
    Canvas(unsigned width, unsigned height, COLORREF background);

    void Fill(const RECT& box, COLORREF colour);
    void Checkerboard(const RECT& box);
    // Centred in the box, blended by its alpha when it has one; what does not fit is cut off.
    void Draw(const Picture& picture, const RECT& box);
    // DrawTextW's format flags, with an ellipsis at the end of what does not fit.
    void Text(const RECT& box, const std::wstring& text, TextStyle style, COLORREF colour, UINT format);

    unsigned Width() const { return width_; }
    unsigned Height() const { return height_; }
    // Rows from top to bottom; the alpha bytes carry no meaning.
    const std::uint32_t* Pixels() const;

private:
    unsigned width_;
    unsigned height_;
    std::uint32_t* pixels_ = nullptr;
    UniqueBitmap bitmap_;
    std::array<UniqueFont, 4> fonts_;
    UniqueDc context_; // goes first, since a selected object can't be deleted
};

} // namespace vantrel::tools
