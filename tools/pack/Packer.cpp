#include "tools/pack/Packer.h"

#include "tools/pack/InputList.h"
#include "tools/pack/PictureReader.h"
#include "tools/pack/RowEncoder.h"
#include "tools/picture/PaletteBuilder.h"
#include "tools/terminal/Console.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace vantrel::tools {

namespace {

// Roughly the number of bytes of pixels held in memory at a time, however large a picture is.
constexpr std::size_t bandBytes = 1U << 20;

// Walks over the frames of all inputs, as often as needed, and shows progress. One input is open at a time;
// if there is only one, it stays open.
class FrameWalk {
public:
    FrameWalk(ComPtr<IWICImagingFactory> factory, std::vector<std::filesystem::path> inputs,
              const PackOptions& options, std::size_t passes)
        : factory_(std::move(factory)), inputs_(std::move(inputs)), options_(options),
          progress_(inputs_.size() * passes) {}

    // Calls visit for each frame.
    template <class Visit>
    void Frames(Visit visit) {
        for (const std::filesystem::path& input : inputs_) {
            progress_.Step(input.wstring());
            if (open_ != &input) {
                reader_.reset();
                reader_ = std::make_unique<PictureReader>(factory_, input, options_.rotate);
                open_ = &input;
            }
            for (unsigned i = 0; i < reader_->FrameCount(); ++i)
                visit(reader_->Frame(i), i);
        }
    }

    // Calls begin for each frame, then visit for all of its rows, made opaque, several at a time.
    template <class Begin, class Visit>
    void Rows(Begin begin, Visit visit) {
        Frames([&](PictureFrame frame, std::uint64_t index) {
            begin(frame);
            const std::size_t width = frame.Width();
            const unsigned height = frame.Height();
            const auto bandRows =
                static_cast<unsigned>(std::max(bandBytes / (width * sizeof(Color)), std::size_t{1}));
            for (unsigned y = 0; y < height; y += bandRows) {
                progress_.Part(index * height + y, std::uint64_t{reader_->FrameCount()} * height);
                band_.resize(width * std::min(bandRows, height - y));
                frame.ReadRows(y, band_);
                MakeOpaque(band_, options_.transparent);
                visit(std::span<const Color>(band_));
            }
        });
    }

private:
    ComPtr<IWICImagingFactory> factory_;
    std::vector<std::filesystem::path> inputs_;
    const PackOptions& options_;
    Progress progress_;
    std::unique_ptr<PictureReader> reader_;
    const std::filesystem::path* open_ = nullptr; // the input being read
    std::vector<Color> band_;
};

} // namespace

ZmiContent Pack(const PackOptions& options) {
    const ComPtr<IWICImagingFactory> factory = CreateWicFactory();
    std::vector<std::filesystem::path> inputs = ListInputs(*factory.Get(), options.inputs);
    OutputGuard guard(options.force);
    for (const auto& input : inputs)
        guard.Protect(input);
    guard.Check(options.output, FileKind::Zmi, NameOrigin::Typed);

    const bool indexed = options.mode == PixelMode::Indexed;
    FrameWalk walk(factory, std::move(inputs), options, indexed ? 3 : 2);
    ZmiContent content;
    content.title = options.title;
    content.mode = options.mode;
    walk.Frames([&](const PictureFrame& frame, unsigned) {
        content.frames.push_back({.width = frame.Width(), .height = frame.Height()});
    });
    ZmiFileSize(content); // rejects an impossible file before the long part

    bool dither = options.dither;
    std::optional<PaletteSearch> table;
    if (indexed) {
        PaletteBuilder builder(options.transparent);
        walk.Rows([](const PictureFrame&) {}, [&](std::span<const Color> band) { builder.Add(band); });
        table = builder.Build();
        content.palette = table->Entries();
        dither = dither && !builder.IsExact();
    }

    RowEncoder encoder(options.mode, table ? &*table : nullptr, options.transparent, dither);
    if (options.transparent)
        content.transparentKey = encoder.TransparentKey();

    OutputFile output(options.output, FileKind::Zmi, guard);
    ZmiWriter writer(output, content);
    std::size_t width = 0;
    std::vector<std::byte> bytes;
    walk.Rows(
        [&](const PictureFrame& frame) {
            width = frame.Width();
            encoder.StartFrame(frame.Width());
        },
        [&](std::span<const Color> band) {
            bytes.clear();
            for (; !band.empty(); band = band.subspan(width))
                encoder.Encode(band.first(width), bytes);
            writer.WriteRows(bytes);
        });
    writer.Finish();
    output.Commit();
    return content;
}

} // namespace vantrel::tools
