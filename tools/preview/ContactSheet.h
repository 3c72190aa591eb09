// One page that shows for every file what the Shell gets from each handler.
#pragma once

#include "tools/preview/Canvas.h"
#include "tools/preview/Report.h"
#include "tools/terminal/OutputGuard.h"

#include <filesystem>
#include <memory>

namespace vantrel::tools {

class ContactSheet {
public:
    // Throws Failure when the files are too many for one page.
    explicit ContactSheet(std::size_t fileCount);

    // The thumbnail size that the cards show, in pixels: smaller when the files are many.
    unsigned ThumbnailEdge() const { return edge_; }

    // Draws the next card. The report's pictures are needed only during the call.
    void Add(const FileReport& report);

    // Throws as WritePng does.
    void Save(const std::filesystem::path& file, const OutputGuard& guard) const;

private:
    void DrawHeading(std::size_t fileCount);
    void DrawIcon(const FileReport& report, unsigned edge, LONG& x, LONG middle);

    unsigned edge_;
    LONG columns_;
    LONG added_ = 0;
    std::unique_ptr<Canvas> canvas_;
};

} // namespace vantrel::tools
