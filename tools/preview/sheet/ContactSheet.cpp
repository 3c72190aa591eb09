#include "tools/preview/sheet/ContactSheet.h"

#include "tools/terminal/Failure.h"

#include <algorithm>
#include <cmath>

namespace vantrel::tools {

namespace {

constexpr std::size_t mostFiles = 500;
constexpr std::size_t mostLargeCards = 48;
constexpr LONG largeEdge = 256;
constexpr LONG compactEdge = 160;

constexpr LONG margin = 32;
constexpr LONG gap = 24;
constexpr LONG padding = 16;
constexpr LONG headingHeight = 92;
constexpr LONG titleHeight = 22;
constexpr LONG lineHeight = 19;
constexpr LONG iconRowHeight = 44;
constexpr LONG belowThumbnail = 12;
constexpr LONG aboveIcons = 12;

constexpr COLORREF pageColor = RGB(238, 240, 243);
constexpr COLORREF cardColor = RGB(255, 255, 255);
constexpr COLORREF edgeColor = RGB(218, 222, 228);
constexpr COLORREF wellColor = RGB(246, 247, 249);
constexpr COLORREF failedColor = RGB(252, 241, 239);
constexpr COLORREF inkColor = RGB(28, 33, 40);
constexpr COLORREF greyColor = RGB(98, 108, 120);
constexpr COLORREF alarmColor = RGB(176, 42, 30);

LONG CardWidth(LONG edge) {
    return edge + 2 * padding;
}

LONG CardHeight(LONG edge) {
    return 2 * padding + edge + belowThumbnail + titleHeight + 3 * lineHeight + aboveIcons + iconRowHeight;
}

// Somewhat wider than high, like screens and pages, but not too wide; of the two column counts closest to
// that shape, the one that leaves fewer places empty.
LONG ColumnsFor(std::size_t fileCount, LONG edge) {
    constexpr double widthToHeight = 1.3;
    constexpr LONG mostColumns = 12;
    const auto files = static_cast<LONG>(fileCount);
    const double ideal = std::sqrt(widthToHeight * files * CardHeight(edge) / CardWidth(edge));
    const LONG fewer = std::clamp(static_cast<LONG>(ideal), 1L, std::min(files, mostColumns));
    const LONG more = std::min({fewer + 1, files, mostColumns});
    const auto emptyPlaces = [files](LONG columns) { return (columns - files % columns) % columns; };
    return emptyPlaces(more) < emptyPlaces(fewer) ? more : fewer;
}

Canvas MakePage(std::size_t fileCount, LONG edge, LONG columns) {
    if (fileCount > mostFiles)
        throw Failure(L"a sheet holds at most " + std::to_wstring(mostFiles) + L" files, not " +
                      std::to_wstring(fileCount));
    const LONG rows = (static_cast<LONG>(fileCount) + columns - 1) / columns;
    return {static_cast<unsigned>(2 * margin + columns * CardWidth(edge) + (columns - 1) * gap),
            static_cast<unsigned>(headingHeight + rows * CardHeight(edge) + (rows - 1) * gap + margin),
            pageColor};
}

std::wstring Value(const FileReport& report, HandlerKind kind, std::wstring_view request) {
    const HandlerResult* result = report.Find(kind, request);
    return result ? result->text : L"";
}

// "640 x 480 · 16 bit", without what the handler did not return.
std::wstring SizeAndDepth(const FileReport& report) {
    const std::wstring dimensions = Value(report, HandlerKind::Properties, L"dimensions");
    const std::wstring depth = Value(report, HandlerKind::Properties, L"bit depth");
    return dimensions + (dimensions.empty() || depth.empty() ? L"" : L" \u00B7 ") +
           (depth.empty() ? L"" : depth + L" bit");
}

} // namespace

ContactSheet::ContactSheet(std::size_t fileCount)
    : edge_(fileCount > mostLargeCards ? compactEdge : largeEdge), columns_(ColumnsFor(fileCount, edge_)),
      canvas_(MakePage(fileCount, edge_, columns_)) {
    const LONG right = static_cast<LONG>(canvas_.Width()) - margin;
    canvas_.Text({margin, 22, right, 52}, L"ZMI in the Shell", TextStyle::Heading, inkColor);
    canvas_.Text({margin, 54, right, 74},
                 std::to_wstring(fileCount) + (fileCount == 1 ? L" file" : L" files") + L", thumbnails at " +
                     std::to_wstring(edge_) + L" px",
                 TextStyle::Body, greyColor);
}

void ContactSheet::Add(const FileReport& report) {
    const LONG left = margin + added_ % columns_ * (CardWidth(edge_) + gap);
    const LONG top = headingHeight + added_ / columns_ * (CardHeight(edge_) + gap);
    ++added_;
    const RECT card{left, top, left + CardWidth(edge_), top + CardHeight(edge_)};
    canvas_.Fill({card.left - 1, card.top - 1, card.right + 1, card.bottom + 2}, edgeColor);
    canvas_.Fill(card, cardColor);

    const RECT well{left + padding, top + padding, left + padding + edge_, top + padding + edge_};
    const HandlerResult* thumbnail = report.Find(HandlerKind::Thumbnail, std::to_wstring(edge_));
    canvas_.Fill(well, thumbnail ? wellColor : failedColor);
    if (thumbnail) {
        canvas_.Draw(thumbnail->picture, well);
    } else {
        canvas_.Text({well.left + 12, well.top + 12, well.right - 12, well.bottom - 12}, report.Reason(),
                     TextStyle::Body, alarmColor, DT_WORDBREAK | DT_EDITCONTROL);
    }

    RECT line{well.left, well.bottom + belowThumbnail, well.right,
              well.bottom + belowThumbnail + titleHeight};
    const auto write = [&](const std::wstring& text, TextStyle style, COLORREF color) {
        canvas_.Text(line, text, style, color);
        line = {line.left, line.bottom, line.right, line.bottom + lineHeight};
    };
    const std::wstring title = Value(report, HandlerKind::Properties, L"title");
    if (!thumbnail)
        write(title.empty() ? L"No picture" : title, TextStyle::Title, alarmColor);
    else if (title.empty())
        write(L"no title", TextStyle::Body, greyColor);
    else
        write(title, TextStyle::Title, inkColor);
    write(report.file.path.filename().wstring(), TextStyle::Body, inkColor);
    write(SizeAndDepth(report), TextStyle::Body, greyColor);
    const std::wstring column = Value(report, HandlerKind::Column, L"dimensions");
    write(column.empty() ? L"" : L"Column: " + column, TextStyle::Body, greyColor);

    LONG x = well.left;
    const LONG middle = card.bottom - padding - iconRowHeight / 2;
    DrawIcon(report, largeIconEdge, x, middle);
    DrawIcon(report, smallIconEdge, x, middle);
    if (thumbnail && edge_ == largeEdge)
        canvas_.Text({x, middle - 10, well.right, middle + 10}, thumbnail->text + L" px", TextStyle::Small,
                     greyColor, DT_SINGLELINE | DT_VCENTER | DT_RIGHT);
}

void ContactSheet::DrawIcon(const FileReport& report, LONG edge, LONG& x, LONG middle) {
    constexpr LONG border = 6;
    constexpr LONG labelWidth = 34;
    const LONG half = edge / 2 + border;
    const RECT tile{x, middle - half, x + 2 * half, middle + half};
    canvas_.Fill({tile.left - 1, tile.top - 1, tile.right + 1, tile.bottom + 1}, edgeColor);
    const HandlerResult* icon = report.Find(HandlerKind::Icon, std::to_wstring(edge));
    if (icon) {
        canvas_.Checkerboard(tile);
        canvas_.Draw(icon->picture, tile);
    } else {
        canvas_.Fill(tile, failedColor);
    }
    canvas_.Text({tile.right + 7, middle - 10, tile.right + 7 + labelWidth, middle + 10},
                 std::to_wstring(edge) + L" px", TextStyle::Small, greyColor);
    x = tile.right + 7 + labelWidth + 8;
}

void ContactSheet::Save(const std::filesystem::path& file, const OutputGuard& guard) const {
    WritePng(file, guard, NameOrigin::Typed, canvas_.Width(), canvas_.Height(), true, canvas_.Pixels());
}

} // namespace vantrel::tools
