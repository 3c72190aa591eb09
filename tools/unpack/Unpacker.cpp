#include "tools/unpack/Unpacker.h"

#include "tools/picture/PaletteBuilder.h"
#include "tools/picture/PngWriter.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/NumberText.h"
#include "tools/unpack/Description.h"

#include <algorithm>
#include <bit>

namespace vantrel::tools {

namespace {

// "-007" for 12 frames, "-00007" for 12,000; nothing for one.
std::wstring NumberSuffix(unsigned number, unsigned count) {
    if (count == 1)
        return {};
    const std::wstring digits = std::to_wstring(number);
    const std::size_t width = std::max<std::size_t>(3, std::to_wstring(count).size());
    return L"-" + std::wstring(width - digits.size(), L'0') + digits;
}

} // namespace

Unpacker::Unpacker(UnpackOptions options, JsonDocument* json)
    : options_(std::move(options)), json_(json), inputs_(FindInputFiles(options_.inputs)),
      guard_(options_.force), names_(options_.out.value_or(L"")), progress_(inputs_.size()) {
    for (const InputFile& input : inputs_)
        guard_.Protect(input.path);
    if (options_.gif) {
        animationFile_.emplace(*options_.gif, FileKind::Gif, guard_);
        animation_.emplace(*animationFile_, options_.delay.value_or(100));
    }
}

bool Unpacker::Run() {
    if (json_)
        json_->BeginList("files");
    bool ok = true;
    for (const InputFile& input : inputs_) {
        progress_.Step(input.shown);
        ok = UnpackFile(input) && ok;
    }
    if (animation_)
        FinishAnimation();
    return ok; // false if the animation failed on the way
}

bool Unpacker::UnpackFile(const InputFile& input) {
    Results results;
    std::optional<ZmiFile> file;
    std::wstring fault = input.fault;
    if (fault.empty())
        fault = OpenZmiFile(input.path, file);
    unsigned count = file ? file->Frames().FrameCount() : 0;
    if (fault.empty() && options_.frames.Last() > count) {
        fault = L"there is no frame " + Grouped(options_.frames.Last()) + L"; the file has " + Grouped(count);
    } else if (fault.empty() && options_.frames.Last() == 0 && !options_.info) {
        fault = Excess(*file);
        count = fault.empty() ? count : 0;
    }

    if (options_.info && !json_) {
        PrintLine(input.shown);
        if (file)
            for (const std::wstring& line : DescribeFile(*file))
                PrintLine(L"  " + line);
    }
    if (!fault.empty())
        Report(input.shown, fault, results);
    for (unsigned i = 0; i < count; ++i)
        if (options_.frames.Contains(i + 1))
            UnpackFrame(*file, input, static_cast<std::uint16_t>(i), results);

    if (json_) {
        JsonObject object;
        object.Add("file", input.shown);
        if (file)
            AddFile(object, *file);
        if (!fault.empty())
            object.Add("fault", fault);
        object.Add("frames", results.frames);
        json_->Append(object);
    } else if (!results.first.empty()) {
        const std::wstring last = results.last != results.first ? L" ... " + results.last.wstring() : L"";
        PrintLine(input.shown + L" -> " + results.first.wstring() + last);
    }
    return results.faults == 0;
}

std::wstring Unpacker::Excess(ZmiFile& file) const {
    constexpr std::uint64_t alwaysFine = 1U << 30;
    constexpr std::uint64_t mostTimes = 16;
    const std::uint16_t count = file.Frames().FrameCount();
    std::uint64_t bytes = 0;
    for (std::uint16_t i = 0; i < count; ++i)
        if (const auto frame = file.Frames().Frame(i); frame && frame->fault == FrameFault::None)
            bytes += frame->pixelByteCount;
    if (bytes <= alwaysFine || bytes <= mostTimes * file.Size())
        return {};
    return L"its " + Grouped(count) + L" frames share their pixels and would become " + Grouped(bytes) +
           L" bytes, from a file of " + Grouped(file.Size()) + L"; say which ones with --frames";
}

void Unpacker::UnpackFrame(ZmiFile& file, const InputFile& input, std::uint16_t index, Results& results) {
    const std::optional<FileFrame> frame = file.Frames().Frame(index);
    std::wstring fault = file.FaultOf(index, frame);
    JsonObject entry;
    entry.Add("frame", index + 1);
    if (frame)
        AddFrame(entry, *frame);
    if (options_.info && frame && !json_)
        PrintLine(L"  frame " + std::to_wstring(index + 1) + L": " + DescribeFrame(*frame));
    if (fault.empty() && !options_.info) {
        const auto attempt = [&](const auto& write) {
            try {
                write();
                return true;
            } catch (const Failure& failure) {
                fault = failure.Message();
                return false;
            }
        };
        if (animation_)
            attempt([&] { AddToAnimation(file, index, *frame); });
        if (!options_.gif || options_.out) {
            const std::filesystem::path path = names_.Take(
                input.path.stem().wstring() + NumberSuffix(index + 1U, file.Frames().FrameCount()));
            if (attempt([&] { WritePicture(file, index, *frame, path); })) {
                entry.Add("png", path.wstring());
                if (results.first.empty())
                    results.first = path;
                results.last = path;
            }
        }
    }
    if (!fault.empty()) {
        entry.Add("fault", fault);
        Report(input.shown, fault, results);
    }
    if (json_)
        results.frames.push_back(std::move(entry));
}

void Unpacker::ReadRows(ZmiFile& file, std::uint16_t index, const FileFrame& frame,
                        const RowTaker& takeRow) const {
    if (!file.Frames().Convert(frame, takeRow))
        throw Failure(L"the pixels of frame " + std::to_wstring(index + 1) + L" cannot be read");
}

void Unpacker::WritePicture(ZmiFile& file, std::uint16_t index, const FileFrame& frame,
                            const std::filesystem::path& path) {
    const FrameRecord& record = frame.record;
    std::vector<PngText> texts;
    if (const std::wstring title = file.Title(); !title.empty())
        texts.push_back({"Title", title});
    texts.push_back({"Description", L"frame " + std::to_wstring(index + 1) + L" of " +
                                        std::to_wstring(file.Frames().FrameCount()) + L", " +
                                        DescribeColors(record)});
    texts.push_back({"Software", L"zmi-unpack " VANTREL_VERSION});

    OutputFile output(path, FileKind::Png, guard_, NameOrigin::MadeUp);
    PngWriter png(output, record.width, record.height, !TransparentKey(record), texts);
    double row = 0;
    ReadRows(file, index, frame, [&](const std::uint32_t* words) {
        png.WriteRow(words);
        ShowProgress(file, index, ++row / record.height);
    });
    png.Finish();
    output.Commit();
}

void Unpacker::AddToAnimation(ZmiFile& file, std::uint16_t index, const FileFrame& frame) {
    constexpr std::uint64_t mostPixels = 1U << 26; // all of them are in memory
    const FrameRecord& record = frame.record;
    if (std::uint64_t{record.width} * record.height > mostPixels)
        throw Failure(L"frame " + std::to_wstring(index + 1) + L" is too large for a GIF: more than " +
                      Grouped(mostPixels) + L" pixels");
    const auto forEachPixel = [&](const auto& take) {
        ReadRows(file, index, frame, [&](const std::uint32_t* words) {
            for (const std::uint32_t word : std::span(words, record.width))
                take(std::bit_cast<Color>(word));
        });
    };
    // Transparent pixels have one colour, with its own entry besides those of opaque pixels.
    std::optional<std::uint16_t> transparent;
    forEachPixel([&](Color pixel) {
        if (pixel.alpha == 0)
            transparent = ToRgb565(pixel);
    });
    PaletteBuilder builder;
    builder.StartFrame(transparent);
    forEachPixel([&](Color pixel) { builder.Add({&pixel, 1}); });
    PaletteSearch table = builder.Build();
    std::vector<std::uint8_t> indices;
    indices.reserve(std::size_t{record.width} * record.height);
    forEachPixel([&](Color pixel) {
        const std::uint16_t color = ToRgb565(pixel);
        indices.push_back(pixel.alpha == 0 ? table.KeyIndex(color) : table.NearestIndex(color));
    });
    const auto key = transparent ? std::optional(table.KeyIndex(*transparent)) : std::nullopt;
    try {
        animation_->AddFrame(record.width, record.height, indices, table.Entries(), key);
    } catch (const Failure&) {
        animation_.reset(); // the file may end within this frame
        throw;
    }
    ++animated_;
    ShowProgress(file, index, 1);
}

void Unpacker::FinishAnimation() {
    const std::wstring path = options_.gif->wstring();
    if (animated_ == 0)
        throw Failure(path + L": there are no frames to write");
    animation_->Finish();
    animationFile_->Commit();
    if (json_)
        json_->Members().Add("gif", path);
    else
        PrintLine(Grouped(animated_) + (animated_ == 1 ? L" frame -> " : L" frames -> ") + path);
}

void Unpacker::ShowProgress(const ZmiFile& file, std::uint16_t index, double part) {
    constexpr double steps = 1000;
    progress_.Part(static_cast<std::uint64_t>((index + part) * steps),
                   static_cast<std::uint64_t>(file.Frames().FrameCount() * steps));
}

void Unpacker::Report(const std::wstring& name, const std::wstring& fault, Results& results) const {
    constexpr std::size_t most = 20;
    ++results.faults;
    if (options_.info && !json_)
        PrintLine(L"  wrong: " + fault);
    else if (results.faults <= most)
        PrintError(L"zmi-unpack: " + name + L": " + fault);
    else if (results.faults == most + 1)
        PrintError(L"zmi-unpack: " + name + L": and more; --json lists everything");
}

} // namespace vantrel::tools
