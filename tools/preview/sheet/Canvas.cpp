#include "tools/preview/sheet/Canvas.h"

#include "tools/terminal/Console.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/NumberText.h"

#include <algorithm>
#include <cwchar>

namespace vantrel::tools {

namespace {

int CALLBACK NoteFont(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found) {
    *reinterpret_cast<bool*>(found) = true;
    return 0;
}

// The first of these faces that is installed: Windows has the first one, Wine on Linux usually the second.
const wchar_t* ChooseFace(HDC context) {
    for (const wchar_t* face : {L"Segoe UI", L"DejaVu Sans", L"Liberation Sans", L"Noto Sans"}) {
        LOGFONTW wanted{};
        wanted.lfCharSet = DEFAULT_CHARSET;
        std::wcscpy(wanted.lfFaceName, face);
        bool found = false;
        EnumFontFamiliesExW(context, &wanted, NoteFont, reinterpret_cast<LPARAM>(&found), 0);
        if (found)
            return face;
    }
    return L"Tahoma";
}

std::uint32_t Blend(std::uint32_t below, std::uint32_t above) {
    const std::uint32_t alpha = above >> 24;
    std::uint32_t blended = 0;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        const std::uint32_t lower = below >> shift & 0xFF;
        const std::uint32_t upper = above >> shift & 0xFF;
        blended |= (lower * (255 - alpha) + upper * alpha + 127) / 255 << shift;
    }
    return blended;
}

} // namespace

Canvas::Canvas(unsigned width, unsigned height, COLORREF background) : width_(width), height_(height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = static_cast<LONG>(width);
    info.bmiHeader.biHeight = -static_cast<LONG>(height);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    bitmap_.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!bitmap_)
        throw Failure(L"no memory for a sheet of " + SizeText(width, height) + L" pixels", E_OUTOFMEMORY);
    pixels_ = static_cast<std::uint32_t*>(bits);
    context_.reset(CreateCompatibleDC(nullptr));
    SelectObject(context_.get(), bitmap_.get());
    SetBkMode(context_.get(), TRANSPARENT);
    Fill({0, 0, static_cast<LONG>(width), static_cast<LONG>(height)}, background);

    const wchar_t* face = ChooseFace(context_.get());
    const auto font = [face](int pixelHeight, int weight) {
        return UniqueFont(CreateFontW(-pixelHeight, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                      OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY,
                                      DEFAULT_PITCH | FF_SWISS, face));
    };
    fonts_ = {font(24, FW_SEMIBOLD), font(15, FW_SEMIBOLD), font(13, FW_NORMAL), font(11, FW_NORMAL)};
}

void Canvas::Fill(const RECT& box, COLORREF color) {
    SetDCBrushColor(context_.get(), color);
    FillRect(context_.get(), &box, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void Canvas::Checkerboard(const RECT& box) {
    constexpr LONG square = 4;
    constexpr COLORREF light = RGB(255, 255, 255);
    constexpr COLORREF dark = RGB(214, 217, 222);
    for (LONG y = box.top; y < box.bottom; y += square)
        for (LONG x = box.left; x < box.right; x += square) {
            const bool isDark = (((x - box.left) / square + (y - box.top) / square) & 1) != 0;
            Fill({x, y, std::min(x + square, box.right), std::min(y + square, box.bottom)},
                 isDark ? dark : light);
        }
}

void Canvas::Draw(const Picture& picture, const RECT& box) {
    GdiFlush();
    const LONG left = box.left + (box.right - box.left - static_cast<LONG>(picture.width)) / 2;
    const LONG top = box.top + (box.bottom - box.top - static_cast<LONG>(picture.height)) / 2;
    for (LONG y = std::max(top, box.top); y < std::min(top + static_cast<LONG>(picture.height), box.bottom);
         ++y)
        for (LONG x = std::max(left, box.left);
             x < std::min(left + static_cast<LONG>(picture.width), box.right); ++x) {
            const std::uint32_t above = picture.pixels[static_cast<std::size_t>(y - top) * picture.width +
                                                       static_cast<std::size_t>(x - left)];
            std::uint32_t& pixel =
                pixels_[static_cast<std::size_t>(y) * width_ + static_cast<std::size_t>(x)];
            pixel = picture.isOpaque ? above : Blend(pixel, above);
        }
}

void Canvas::Text(const RECT& box, const std::wstring& text, TextStyle style, COLORREF color, UINT format) {
    SelectObject(context_.get(), fonts_[static_cast<std::size_t>(style)].get());
    SetTextColor(context_.get(), color);
    const std::wstring visible = Visible(text);
    RECT area = box;
    DrawTextW(context_.get(), visible.c_str(), static_cast<int>(visible.size()), &area,
              format | DT_NOPREFIX | DT_END_ELLIPSIS);
}

const std::uint32_t* Canvas::Pixels() const {
    GdiFlush();
    return pixels_;
}

} // namespace vantrel::tools
