// One page that shows for every file what the Shell gets from each handler.
#pragma once

#include "tools/preview/FileReport.h"
#include "tools/preview/sheet/Canvas.h"
#include "tools/terminal/OutputGuard.h"

#include <filesystem>

namespace vantrel::tools {

class ContactSheet {
public:
    // For at least one file. Throws Failure if there are too many for one page.
    explicit ContactSheet(std::size_t fileCount);

    // The thumbnail size on the cards, in pixels: smaller for many files.
    unsigned ThumbnailEdge() const { return static_cast<unsigned>(edge_); }

    // Draws the next card. The report's pictures are needed only during the call.
    void Add(const FileReport& report);

    // Throws as WritePng does.
    void Save(const std::filesystem::path& file, const OutputGuard& guard) const;

private:
    void DrawIcon(const FileReport& report, LONG edge, LONG& x, LONG middle);

    LONG edge_; // of thumbnails
    LONG columns_;
    LONG added_ = 0;
    Canvas canvas_;
};

} // namespace vantrel::tools
