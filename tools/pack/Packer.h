// The whole process from the user's pictures to a finished ZMI file.
#pragma once

#include "tools/pack/FrameSource.h"
#include "tools/pack/PackOptions.h"
#include "tools/pack/ZmiWriter.h"
#include "tools/picture/WicFactory.h"
#include "tools/terminal/Console.h"
#include "tools/terminal/InputFile.h"

#include <filesystem>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace vantrel::tools {

class Packer {
public:
    using Inputs = std::span<const InputFile>;

    // Lists the inputs and protects them from being overwritten. Needs COM on this thread, and the options as
    // long as the packer. Throws Failure.
    explicit Packer(const PackOptions& options);
    Packer(const Packer&) = delete;
    Packer& operator=(const Packer&) = delete;

    const std::vector<InputFile>& AllInputs() const { return inputs_; }

    // Packs some of the inputs, or the blank picture when there are none. Returns what the file
    // contains. Throws Failure; the output is then unchanged.
    ZmiContent Pack(Inputs inputs, const std::filesystem::path& output, NameOrigin origin);
    // Copies the first input, a ZMI file, with another title. Throws as Pack does.
    void ChangeTitle();
    // Says what the inputs lost, in a line for each kind of loss.
    void PrintLosses() const;

private:
    PixelMode ChooseMode() const;
    // Calls visit(source, index) for each frame. One input is open at a time; if there is only one, it stays
    // open.
    template <class Visit>
    void WalkFrames(Inputs inputs, Visit visit);
    // Calls begin(frame) for each frame, then visit(rows) for all of its rows, several at a time: opaque, or
    // transparent with alpha 0.
    template <class Begin, class Visit>
    void WalkRows(Inputs inputs, const ZmiContent& content, Begin begin, Visit visit);
    void NoteLoss(const wchar_t* what); // in the open input

    const PackOptions& options_;
    ComPtr<IWICImagingFactory> factory_;
    std::vector<InputFile> inputs_;
    OutputGuard guard_;
    PixelMode mode_;
    Progress progress_;
    std::unique_ptr<FrameSource> source_;
    const InputFile* open_ = nullptr; // the input that it reads
    std::map<std::wstring, std::vector<std::wstring>> losses_;
};

} // namespace vantrel::tools
