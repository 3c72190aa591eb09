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
    // Throws Failure if there is not enough memory for the page.
    Canvas(unsigned width, unsigned height, COLORREF background);

    void Fill(const RECT& box, COLORREF color);
    void Checkerboard(const RECT& box);
    // Centred in the box, blended if it has alpha, and clipped.
    void Draw(const Picture& picture, const RECT& box);
    // Takes DrawTextW's format flags; text that does not fit ends in an ellipsis.
    void Text(const RECT& box, const std::wstring& text, TextStyle style, COLORREF color,
              UINT format = DT_SINGLELINE | DT_VCENTER);

    unsigned Width() const { return width_; }
    unsigned Height() const { return height_; }
    // Rows from top to bottom; the alpha bytes are meaningless.
    const std::uint32_t* Pixels() const;

private:
    unsigned width_;
    unsigned height_;
    std::uint32_t* pixels_ = nullptr;
    UniqueBitmap bitmap_;
    std::array<UniqueFont, 4> fonts_;
    UniqueDc context_; // destroyed first, since a selected object can't be deleted
};

} // namespace vantrel::tools
