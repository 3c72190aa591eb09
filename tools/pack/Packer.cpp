#include "tools/pack/Packer.h"

#include "tools/pack/PictureReader.h"
#include "tools/pack/RowEncoder.h"
#include "tools/pack/ZmiReader.h"
#include "tools/picture/PaletteBuilder.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/FileName.h"
#include "tools/terminal/NumberText.h"

#include <optional>

namespace vantrel::tools {

namespace {

std::vector<InputFile> FindInputs(IWICImagingFactory& factory, const Arguments& typed) {
    std::set<std::wstring, NameOrder> known;
    const auto isPicture = [&](const std::filesystem::path& file) {
        if (known.empty())
            known = DecodableExtensions(factory);
        return known.contains(file.extension().wstring());
    };
    std::vector<InputFile> inputs = FindInputFiles(typed, {L"pictures", isPicture});
    for (const InputFile& input : inputs)
        if (!input.fault.empty())
            throw Failure(input.shown + L": " + input.fault);
    return inputs;
}

} // namespace

Packer::Packer(const PackOptions& options)
    : options_(options), factory_(CreateWicFactory()), inputs_(FindInputs(*factory_.Get(), options.inputs)),
      guard_(options.force), mode_(ChooseMode()),
      progress_(inputs_.size() * (mode_ == PixelMode::Indexed ? 3 : 2)) {
    for (const InputFile& input : inputs_)
        guard_.Protect(input.path);
    if (options.transparent && mode_ == PixelMode::Monochrome)
        throw UsageError(L"--transparent has no meaning with --mode 1");
}

// Without the option, that of the inputs if all of them are ZMI files of one mode.
PixelMode Packer::ChooseMode() const {
    if (options_.mode)
        return *options_.mode;
    std::optional<PixelMode> common;
    for (const InputFile& input : inputs_) {
        if (options_.each || !HasExtension(input.path, L".zmi"))
            return PixelMode::Rgb565;
        const PixelMode mode = ZmiReader(input.shown).Mode();
        if (common.value_or(mode) != mode)
            return PixelMode::Rgb565;
        common = mode;
    }
    return common.value_or(PixelMode::Rgb565);
}

template <class Visit>
void Packer::WalkFrames(Inputs inputs, Visit visit) {
    for (const InputFile& input : inputs) {
        progress_.Step(input.shown);
        if (!source_ || open_ != &input) {
            source_.reset();
            if (!HasExtension(input.path, L".zmi"))
                source_ = std::make_unique<PictureReader>(factory_, input.shown, !options_.noRotate);
            else
                source_ = std::make_unique<ZmiReader>(
                    input.shown, options_.transparent ? std::nullopt : std::optional(mode_));
            open_ = &input;
        }
        for (unsigned i = 0; i < source_->FrameCount(); ++i)
            visit(*source_, i);
    }
}

template <class Begin, class Visit>
void Packer::WalkRows(Inputs inputs, const ZmiContent& content, Begin begin, Visit visit) {
    std::size_t number = 0;
    WalkFrames(inputs, [&](FrameSource& source, unsigned index) {
        const ZmiFrame& frame = content.frames.at(number++);
        begin(frame);
        std::uint64_t done = std::uint64_t{index} * frame.height;
        source.ReadRows(index, [&](std::span<Color> rows) {
            // Otherwise the source has made them opaque or transparent.
            if ((options_.transparent || !frame.transparentKey) && Flatten(rows, options_.transparent))
                NoteLoss(mode_ == PixelMode::Monochrome
                             ? L"transparent parts are filled with white"
                             : L"transparent parts are filled with white; --transparent keeps them");
            visit(rows);
            done += rows.size() / frame.width;
            progress_.Part(done, std::uint64_t{source.FrameCount()} * frame.height);
        });
    });
}

ZmiContent Packer::Pack(Inputs inputs, const std::filesystem::path& output, NameOrigin origin) {
    guard_.Check(output, FileKind::Zmi, origin);
    ZmiContent content;
    content.mode = mode_;
    std::optional<std::string> title = options_.title;
    std::uint64_t bytes = 0;
    WalkFrames(inputs, [&](FrameSource& source, unsigned index) {
        if (!title)
            title = source.Title();
        if (source.LacksFrames())
            NoteLoss(L"it has more frames, which this system's decoder does not deliver");
        ZmiFrame& frame = content.frames.emplace_back(source.Frame(index));
        if (options_.transparent)
            frame.transparentKey = ToRgb565(*options_.transparent);
        bytes += PixelByteCount(mode_, frame.width, frame.height);
        CheckZmiLimits(content.frames.size() + source.FrameCount() - index - 1, bytes);
    });
    content.title = title.value_or("");

    bool dither = !options_.noDither;
    std::optional<PaletteSearch> palette;
    if (mode_ == PixelMode::Indexed) {
        PaletteBuilder builder;
        WalkRows(
            inputs, content, [&](const ZmiFrame& frame) { builder.StartFrame(frame.transparentKey); },
            [&](std::span<const Color> rows) { builder.Add(rows); });
        palette = builder.Build();
        content.palette = palette->Entries();
        dither = dither && !builder.IsExact();
        for (ZmiFrame& frame : content.frames)
            if (frame.transparentKey)
                frame.transparentKey = palette->KeyIndex(static_cast<std::uint16_t>(*frame.transparentKey));
    }

    OutputFile file(output, FileKind::Zmi, guard_, origin);
    ZmiWriter writer(file, content);
    RowEncoder encoder(mode_, palette ? &*palette : nullptr, dither);
    std::size_t width = 0;
    std::vector<std::byte> encoded;
    WalkRows(
        inputs, content,
        [&](const ZmiFrame& frame) {
            width = frame.width;
            encoder.StartFrame(frame.width, frame.transparentKey);
        },
        [&](std::span<const Color> rows) {
            encoded.clear();
            for (; !rows.empty(); rows = rows.subspan(width))
                encoder.Encode(rows.first(width), encoded);
            writer.WriteRows(encoded);
        });
    writer.Finish();
    file.Commit();
    return content;
}

void Packer::ChangeTitle() {
    OutputFile file(options_.output, FileKind::Zmi, guard_);
    ZmiReader(inputs_.front().shown).CopyWithTitle(*options_.title, file);
    file.Commit();
}

void Packer::NoteLoss(const wchar_t* what) {
    std::vector<std::wstring>& inputs = losses_[what];
    if (inputs.empty() || inputs.back() != open_->shown)
        inputs.push_back(open_->shown);
}

void Packer::PrintLosses() const {
    for (const auto& [what, inputs] : losses_)
        PrintError(L"zmi-pack: " + inputs.front() +
                   (inputs.size() > 1 ? L" and " + Grouped(inputs.size() - 1) + L" more" : L"") + L": " +
                   what);
}

} // namespace vantrel::tools
