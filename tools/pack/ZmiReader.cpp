#include "tools/pack/ZmiReader.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/LongPath.h"

#include <algorithm>
#include <array>
#include <bit>
#include <fstream>

namespace vantrel::tools {

ZmiReader::ZmiReader(const std::filesystem::path& path, std::optional<PixelMode> keptMode)
    : path_(path), keptMode_(keptMode) {
    if (const std::wstring fault = OpenZmiFile(path, file_); !fault.empty())
        throw Failure(path.wstring() + L": " + fault);
}

std::optional<std::string> ZmiReader::Title() const {
    const char* const text = file_->Frames().Image().text;
    return std::string(text, std::find(text, text + sizeof ImageHeader::text, '\0'));
}

void ZmiReader::CopyWithTitle(const std::string& title, OutputFile& output) {
    std::ifstream stream(LongPath(path_), std::ios::binary);
    std::vector<char> bytes(bandBytes);
    for (std::uint64_t rest = file_->Size(); rest > 0;) {
        const std::uint64_t count = std::min<std::uint64_t>(rest, bytes.size());
        if (!stream.read(bytes.data(), static_cast<std::streamsize>(count)))
            throw Failure(path_.wstring() + L": cannot be read");
        output.Write(std::as_bytes(std::span(bytes).first(count)));
        rest -= count;
    }
    std::array<char, sizeof ImageHeader::text> text{};
    std::ranges::copy(title, text.begin());
    output.Seek(file_->Header().dataOffset, FILE_BEGIN);
    output.Write(std::as_bytes(std::span(text)));
}

FileFrame ZmiReader::SoundFrame(unsigned index) {
    const auto number = static_cast<std::uint16_t>(index);
    const std::optional<FileFrame> frame = file_->Frames().Frame(number);
    std::wstring fault = file_->FaultOf(number, frame);
    if (fault.empty() && ModeOf(frame->record.flags) != Mode())
        fault = L"frame " + std::to_wstring(index + 1) + L" is in another pixel mode than its file";
    if (!fault.empty())
        throw Failure(path_.wstring() + L": " + fault);
    return *frame;
}

ZmiFrame ZmiReader::Frame(unsigned index) {
    const FileFrame frame = SoundFrame(index);
    const auto key = TransparentKey(frame.record);
    ZmiFrame facts{frame.record.width, frame.record.height};
    if (!key || Mode() != keptMode_)
        return facts;
    auto color = static_cast<std::uint16_t>(*key);
    if (Mode() == PixelMode::Indexed) {
        std::ifstream stream(LongPath(path_), std::ios::binary);
        stream.seekg(frame.paletteOffset + *key * std::streamoff{sizeof color});
        stream.read(reinterpret_cast<char*>(&color), sizeof color);
    }
    facts.transparentKey = color;
    return facts;
}

void ZmiReader::ReadRows(unsigned index, const RowsTaker& take) {
    const FileFrame frame = SoundFrame(index);
    std::vector<Color> band;
    const bool isRead = file_->Frames().Convert(frame, [&](const std::uint32_t* words) {
        for (const std::uint32_t word : std::span(words, frame.record.width))
            band.push_back(std::bit_cast<Color>(word));
        if (band.size() * sizeof(Color) >= bandBytes) {
            take(band);
            band.clear();
        }
    });
    if (!isRead)
        throw Failure(path_.wstring() + L": the pixels of frame " + std::to_wstring(index + 1) +
                      L" cannot be read");
    if (!band.empty())
        take(band);
}

} // namespace vantrel::tools
