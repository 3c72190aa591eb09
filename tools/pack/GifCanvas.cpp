#include "tools/pack/GifCanvas.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/NumberText.h"

#include <algorithm>
#include <cstddef>

namespace vantrel::tools {

namespace {

constexpr std::uint64_t mostPixels = 1U << 26; // held at a time, 256 MiB of them
constexpr auto frameLeft = L"/imgdesc/Left";
constexpr auto frameTop = L"/imgdesc/Top";

} // namespace

GifCanvas::GifCanvas(const WicPicture& picture) : picture_(picture) {
    const WicFrame first = picture.Frame(0);
    width_ = std::max(picture.Number(L"/logscrdesc/Width"), first.Number(frameLeft) + first.Width());
    height_ = std::max(picture.Number(L"/logscrdesc/Height"), first.Number(frameTop) + first.Height());
}

std::span<const Color> GifCanvas::Show(unsigned index) {
    if (shown_ == 0 || index + 1 < shown_) {
        CheckSize(0);
        pixels_.assign(std::size_t{width_} * height_, Color{});
        shown_ = 0;
        disposal_ = 0;
    }
    for (; shown_ <= index; ++shown_) {
        Dispose();
        Draw(picture_.Frame(shown_));
    }
    return pixels_;
}

void GifCanvas::CheckSize(std::uint64_t beneath) const {
    if (std::uint64_t{width_} * height_ + beneath > mostPixels)
        throw Failure(picture_.Name() + L": its canvas of " + SizeText(width_, height_) +
                      L" pixels is too large to compose its frames");
}

void GifCanvas::Draw(const WicFrame& frame) {
    const UINT x = std::min(frame.Number(frameLeft), width_);
    const UINT y = std::min(frame.Number(frameTop), height_);
    const UINT columns = std::min(frame.Width(), width_ - x);
    const UINT rows = std::min(frame.Height(), height_ - y);
    covered_ = {static_cast<INT>(x), static_cast<INT>(y), static_cast<INT>(columns), static_cast<INT>(rows)};
    disposal_ = frame.Number(L"/grctlext/Disposal");
    beneath_.clear();
    if (columns == 0)
        return;
    if (disposal_ == restoreWhatWasBeneath) {
        CheckSize(std::uint64_t{columns} * rows);
        beneath_.reserve(std::size_t{columns} * rows);
    }

    std::vector<Color> drawn(columns);
    for (UINT row = 0; row < rows; ++row) {
        frame.CopyPixels({0, static_cast<INT>(row), static_cast<INT>(columns), 1}, drawn);
        const std::span<Color> target = CoveredRow(row);
        if (disposal_ == restoreWhatWasBeneath)
            beneath_.insert(beneath_.end(), target.begin(), target.end());
        for (UINT i = 0; i < columns; ++i)
            if (drawn[i].alpha != 0)
                target[i] = drawn[i];
    }
}

void GifCanvas::Dispose() {
    if (disposal_ != clearFrame && disposal_ != restoreWhatWasBeneath)
        return;
    auto beneath = beneath_.begin();
    for (unsigned row = 0; row < static_cast<unsigned>(covered_.Height); ++row)
        for (Color& color : CoveredRow(row))
            color = disposal_ == clearFrame ? Color{} : *beneath++;
}

std::span<Color> GifCanvas::CoveredRow(unsigned y) {
    return std::span(pixels_).subspan((static_cast<std::size_t>(covered_.Y) + y) * width_ +
                                          static_cast<std::size_t>(covered_.X),
                                      static_cast<std::size_t>(covered_.Width));
}

} // namespace vantrel::tools
