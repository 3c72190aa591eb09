#include "tools/pack/Packer.h"

#include "tools/pack/ColorTable.h"
#include "tools/pack/PictureReader.h"
#include "tools/pack/RowEncoder.h"
#include "tools/terminal/Console.h"

#include <algorithm>

namespace vantrel::tools {

namespace {

// About as many bytes of pixels are in memory at a time, however large a picture is.
constexpr std::size_t bandBytes = 1U << 20;

// Opens the inputs one after the other, so that only one is open at a time; step is called before each.
template <class Step, class Visit>
void VisitFrames(const ComPtr<IWICImagingFactory>& factory, const PackOptions& options, Step step,
                 Visit visit) {
    for (const auto& input : options.inputs) {
        step(input.wstring());
        const PictureReader reader(factory, input);
        for (unsigned i = 0; i < reader.FrameCount(); ++i)
            visit(reader.Frame(i));
    }
}

// Hands out all rows of a frame, made opaque, some at a time.
template <class Visit>
void VisitRows(const PictureFrame& frame, std::optional<Color> transparent, Visit visit) {
    const std::size_t width = frame.Width();
    const auto bandRows =
        static_cast<unsigned>(std::max(bandBytes / (width * sizeof(Color)), std::size_t{1}));
    std::vector<Color> band;
    for (unsigned y = 0; y < frame.Height(); y += bandRows) {
        band.resize(width * std::min(bandRows, frame.Height() - y));
        frame.ReadRows(y, band);
        MakeOpaque(band, transparent);
        visit(std::span<const Color>(band));
    }
}

} // namespace

ZmiContent Pack(const PackOptions& options) {
    OutputGuard guard;
    for (const auto& input : options.inputs)
        guard.Protect(input);
    guard.Check(options.output, FileKind::Zmi);

    const bool indexed = options.mode == zmi::PixelMode::Indexed;
    std::optional<Progress> progress;
    if (options.inputs.size() > 1)
        progress.emplace(options.inputs.size() * (indexed ? 3 : 2));
    const auto step = [&](const std::wstring& input) {
        if (progress)
            progress->Step(input);
    };

    const ComPtr<IWICImagingFactory> factory = CreateWicFactory();
    ZmiContent content;
    content.title = options.title;
    content.mode = options.mode;
    std::uint64_t pixels = 0;
    VisitFrames(factory, options, step, [&](const PictureFrame& frame) {
        content.frames.push_back({.width = frame.Width(), .height = frame.Height()});
        pixels += std::uint64_t{frame.Width()} * frame.Height();
    });
    ZmiFileSize(content); // a file that cannot be is refused before the long part

    bool dither = options.dither;
    std::optional<ColorTable> table;
    if (indexed) {
        ColorTableBuilder builder(pixels, options.transparent);
        VisitFrames(factory, options, step, [&](const PictureFrame& frame) {
            VisitRows(frame, options.transparent, [&](std::span<const Color> band) { builder.Add(band); });
        });
        table = builder.Build(*factory.Get());
        content.colorTable = table->Entries();
        dither = dither && !builder.IsExact();
    }

    RowEncoder encoder(options.mode, table ? &*table : nullptr, options.transparent, dither);
    if (options.transparent)
        content.transparentKey = encoder.TransparentKey();

    OutputFile output(options.output, FileKind::Zmi, guard);
    ZmiWriter writer(output, content);
    std::vector<std::byte> bytes;
    VisitFrames(factory, options, step, [&](const PictureFrame& frame) {
        const std::size_t width = frame.Width();
        encoder.StartFrame(frame.Width());
        VisitRows(frame, options.transparent, [&](std::span<const Color> band) {
            bytes.clear();
            for (; !band.empty(); band = band.subspan(width))
                encoder.Encode(band.first(width), bytes);
            writer.WriteRows(bytes);
        });
    });
    writer.Finish();
    output.Commit();
    return content;
}

} // namespace vantrel::tools
