// A ZMI file as an input.
#pragma once

#include "tools/inspection/ZmiFile.h"
#include "tools/pack/FrameSource.h"
#include "tools/terminal/OutputFile.h"

#include <filesystem>
#include <optional>
#include <string>

namespace vantrel::tools {

class ZmiReader final : public FrameSource {
public:
    // Frames of this mode keep their transparent colour. Throws Failure.
    explicit ZmiReader(const std::filesystem::path& path, std::optional<PixelMode> keptMode = {});

    PixelMode Mode() const { return ModeOf(file_->Frames().Image().flags); }
    // Writes the file's bytes, with another title.
    void CopyWithTitle(const std::string& title, OutputFile& output);

    unsigned FrameCount() const override { return file_->Frames().FrameCount(); }
    std::optional<std::string> Title() const override;
    ZmiFrame Frame(unsigned index) override;
    void ReadRows(unsigned index, const RowsTaker& take) override;

private:
    FileFrame SoundFrame(unsigned index);

    std::filesystem::path path_;
    std::optional<PixelMode> keptMode_;
    std::optional<ZmiFile> file_;
};

} // namespace vantrel::tools
