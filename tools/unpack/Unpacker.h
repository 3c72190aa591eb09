// The work of zmi-unpack: file by file, frame by frame.
#pragma once

#include "tools/inspection/ZmiFile.h"
#include "tools/picture/GifWriter.h"
#include "tools/picture/PictureNames.h"
#include "tools/terminal/Console.h"
#include "tools/terminal/InputFile.h"
#include "tools/terminal/JsonDocument.h"
#include "tools/terminal/OutputFile.h"
#include "tools/terminal/OutputGuard.h"
#include "tools/unpack/UnpackOptions.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::tools {

class Unpacker {
public:
    // The document is non-null if --json was given, and must then outlive the unpacker. Throws what
    // OutputFile and FindInputFiles throw.
    Unpacker(UnpackOptions options, JsonDocument* json);

    // False if a file, a frame or its picture failed; this was reported, and all others were unpacked. Throws
    // Failure if the animation can't be completed, or stdout fails.
    bool Run();

private:
    struct Results {
        std::size_t faults = 0;
        std::filesystem::path first; // picture
        std::filesystem::path last;
        std::vector<JsonObject> frames;
    };

    bool UnpackFile(const InputFile& input);
    // What speaks against unpacking all frames of a file; empty if nothing does.
    std::wstring Excess(ZmiFile& file) const;
    void UnpackFrame(ZmiFile& file, const InputFile& input, std::uint16_t index, Results& results);
    // All three throw Failure.
    void ReadRows(ZmiFile& file, std::uint16_t index, const FileFrame& frame, const RowTaker& takeRow) const;
    void WritePicture(ZmiFile& file, std::uint16_t index, const FileFrame& frame,
                      const std::filesystem::path& path);
    void AddToAnimation(ZmiFile& file, std::uint16_t index, const FileFrame& frame);
    void FinishAnimation();
    void ShowProgress(const ZmiFile& file, std::uint16_t index, double part);
    void Report(const std::wstring& name, const std::wstring& fault, Results& results) const;

    UnpackOptions options_;
    JsonDocument* json_;
    std::vector<InputFile> inputs_;
    OutputGuard guard_;
    PictureNames names_;
    Progress progress_;
    std::optional<OutputFile> animationFile_;
    std::optional<GifWriter> animation_;
    std::size_t animated_ = 0; // frames
};

} // namespace vantrel::tools
