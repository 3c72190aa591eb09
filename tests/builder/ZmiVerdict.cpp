#include "tests/builder/ZmiVerdict.h"

#include <string_view>

namespace vantrel::tests {

Verdict Judge(const Bytes& file) {
    using namespace std::literals;
    const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
    if (file.size() < file_header::size || !text.starts_with("zpix-zmi\0"sv) ||
        GetField(file, 0, file_header::version) != 1 || GetField(file, 0, file_header::headerSize) != 112 ||
        GetField(file, 0, file_header::kind) != 1)
        return Verdict::Fails;

    // A payload that really lies between header and trailer can't make any 32-bit sum wrap.
    const std::uint64_t begin = GetField(file, 0, file_header::dataOffset);
    const std::uint64_t end = begin + GetField(file, 0, file_header::dataSize);
    if (begin < file_header::size || end >= 0x80000000 || end + 4 != file.size() || !text.ends_with("zpix"sv))
        return Verdict::Fails;
    const auto inside = [&](std::uint64_t offset, std::uint64_t count) {
        return offset >= begin && offset + count <= end;
    };

    if (!inside(begin, image_header::size))
        return Verdict::Fails;
    const auto header = [&](Field field) { return GetField(file, begin, field); };
    const std::uint64_t pixels = header(image_header::pixelOffset);
    const std::uint64_t palette = header(image_header::paletteOffset);
    const unsigned mode = (header(image_header::flags) & 24) / 8;
    if (pixels == 0)
        return Verdict::Loads;
    if (mode == 1 && !inside(palette, 512))
        return Verdict::Fails;
    if ((header(image_header::flags) & 1) == 0) {
        const std::size_t count = PixelBytes(mode, header(image_header::width), header(image_header::height));
        return inside(pixels, count) ? Verdict::Loads : Verdict::Fails;
    }

    if (!inside(pixels, frame_table::size))
        return Verdict::Fails;
    const std::uint64_t frameCount = GetField(file, pixels, frame_table::frameCount);
    const std::uint64_t records = pixels + frame_table::size;
    if (!inside(records, frameCount * frame_record::size))
        return Verdict::Fails;
    for (std::uint64_t i = 0; i < frameCount; ++i) {
        const auto record = [&](Field field) {
            return GetField(file, records + i * frame_record::size, field);
        };
        const std::uint64_t own = record(frame_record::paletteOffset);
        const std::size_t count = PixelBytes(mode, record(frame_record::width), record(frame_record::height));
        if ((mode == 1 && i > 0 && own != palette && !inside(own, 512)) ||
            !inside(record(frame_record::dataOffset), count))
            return Verdict::Fails;
    }
    return mode == 0 && frameCount == 0 ? Verdict::Throws : Verdict::Loads;
}

} // namespace vantrel::tests
