#include "tests/builder/ZmiVerdict.h"

#include "tests/builder/FileFacts.h"

#include <string_view>

namespace vantrel::tests {

Verdict Judge(const Bytes& file) {
    using namespace std::literals;
    const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
    if (file.size() < file_header::size || !text.starts_with("zpix-zmi\0"sv) ||
        GetField(file, 0, file_header::version) != 1 || GetField(file, 0, file_header::headerSize) != 112 ||
        GetField(file, 0, file_header::kind) != 1)
        return Verdict::Fails;

    // A payload that really is between header and trailer can't make any 32-bit sum wrap.
    const std::uint64_t begin = GetField(file, 0, file_header::dataOffset);
    const std::uint64_t end = begin + GetField(file, 0, file_header::dataSize);
    if (begin < file_header::size || end >= 0x80000000 || end + 4 != file.size() || !text.ends_with("zpix"sv))
        return Verdict::Fails;
    const auto inside = [&](std::uint64_t offset, std::uint64_t count) {
        return offset >= begin && offset + count <= end;
    };

    if (!inside(begin, image_header::size))
        return Verdict::Fails;
    const FileFacts facts(file);
    if (facts.blank)
        return Verdict::Loads;
    const std::uint64_t palette = facts.Header(image_header::paletteOffset);
    if (facts.mode == 1 && !inside(palette, 512))
        return Verdict::Fails;
    if (facts.hasTable && (!inside(facts.pixels, frame_table::size) ||
                           !inside(facts.RecordAt(0), facts.FrameCount() * frame_record::size)))
        return Verdict::Fails;
    for (std::size_t i = 0; i < facts.FrameCount(); ++i) {
        const std::uint64_t own = i > 0 ? facts.Record(i, frame_record::paletteOffset) : palette;
        if ((facts.mode == 1 && own != palette && !inside(own, 512)) ||
            !inside(facts.PixelsAt(i), facts.FrameBytes(i)))
            return Verdict::Fails;
    }
    return facts.mode == 0 && facts.FrameCount() == 0 ? Verdict::Throws : Verdict::Loads;
}

} // namespace vantrel::tests
