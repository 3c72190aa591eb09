#include "tools/unpack/Description.h"

#include "tools/terminal/NumberText.h"

#include <array>

namespace vantrel::tools {

std::wstring DescribeColors(const FrameRecord& frame) {
    constexpr std::array<const wchar_t*, 4> names = {L"1 bit", L"256 colours", L"16-bit colour",
                                                     L"the reserved mode 3"};
    const PixelMode mode = ModeOf(frame.flags);
    std::wstring name = names[static_cast<std::size_t>(mode)];
    if ((frame.flags & transparencyFlag) == 0)
        return name;
    const auto key = TransparentKey(frame);
    if (!key)
        return name + L" with a transparent colour, which has no meaning here";
    return name +
           (mode == PixelMode::Indexed ? L", index " + std::to_wstring(*key)
                                       : L", colour 0x" + Hexadecimal(*key, 4)) +
           L" is transparent";
}

std::wstring DescribeFrame(const FileFrame& frame) {
    const FrameRecord& record = frame.record;
    std::wstring text = SizeText(record.width, record.height) + L", " + DescribeColors(record);
    if (record.frameDataOffset != 0)
        text +=
            L", " + Grouped(frame.pixelByteCount) + L" bytes at offset " + Grouped(record.frameDataOffset);
    if (frame.paletteOffset != 0)
        text += L", colour table at offset " + Grouped(frame.paletteOffset);
    return text;
}

std::vector<std::wstring> DescribeFile(const ZmiFile& file) {
    const FrameReader& frames = file.Frames();
    const FileHeader& header = file.Header();
    const ImageHeader& image = frames.Image();
    if (!file.IsZmi())
        return {Grouped(file.Size()) + L" bytes"};
    std::vector<std::wstring> lines = {Grouped(file.Size()) + L" bytes, version " + Grouped(header.version) +
                                       L", kind " + std::to_wstring(header.kind) + L", payload of " +
                                       Grouped(header.dataSize) + L" bytes at offset " +
                                       Grouped(header.dataOffset)};
    if (frames.Fault() == FileFault::ImageHeader)
        return lines;
    lines.push_back(L"title \"" + file.Title() + L"\"");
    if (image.pixelOffset == 0) {
        lines.push_back(L"no pixels: the blank picture");
        return lines;
    }
    lines.push_back(L"picture " + SizeText(image.width, image.height) + L", " +
                    DescribeColors(SingleFrame(image)) + L", flags 0x" + Hexadecimal(image.flags, 2));
    if ((image.flags & frameTableFlag) != 0 && frames.Fault() != FileFault::FrameTable)
        lines.push_back(Grouped(frames.Table().frameCount) + L" frames, table at offset " +
                        Grouped(image.pixelOffset));
    return lines;
}

void AddFrame(JsonObject& object, const FileFrame& frame) {
    const FrameRecord& record = frame.record;
    object.Add("width", std::uint16_t{record.width});
    object.Add("height", std::uint16_t{record.height});
    object.Add("mode", static_cast<unsigned>(ModeOf(record.flags)));
    object.Add("flags", unsigned{record.flags});
    object.Add("pixelOffset", std::uint32_t{record.frameDataOffset});
    object.Add("pixelBytes", frame.pixelByteCount);
    if (frame.paletteOffset != 0)
        object.Add("paletteOffset", frame.paletteOffset);
    if ((record.flags & transparencyFlag) != 0)
        object.Add("transparentKey", std::uint32_t{record.transparentKey});
}

void AddFile(JsonObject& object, const ZmiFile& file) {
    const FrameReader& frames = file.Frames();
    const FileHeader& header = file.Header();
    const ImageHeader& image = frames.Image();
    object.Add("size", file.Size());
    if (!file.IsZmi())
        return;
    object.Add("version", std::uint32_t{header.version});
    object.Add("kind", unsigned{header.kind});
    object.Add("dataOffset", std::uint32_t{header.dataOffset});
    object.Add("dataSize", std::uint32_t{header.dataSize});
    if (frames.Fault() == FileFault::ImageHeader)
        return;
    object.Add("title", file.Title());
    object.Add("width", std::uint16_t{image.width});
    object.Add("height", std::uint16_t{image.height});
    object.Add("mode", static_cast<unsigned>(ModeOf(image.flags)));
    object.Add("flags", unsigned{image.flags});
    object.Add("pixelOffset", std::uint32_t{image.pixelOffset});
    object.Add("paletteOffset", std::uint32_t{image.paletteOffset});
    object.Add("transparentKey", std::uint32_t{image.transparentKey});
    if (frames.Fault() != FileFault::FrameTable)
        object.Add("frameCount", std::uint16_t{frames.Table().frameCount});
}

} // namespace vantrel::tools
