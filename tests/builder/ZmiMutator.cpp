#include "tests/builder/ZmiMutator.h"

#include <algorithm>
#include <iterator>

namespace vantrel::tests {

namespace {

constexpr std::size_t smallestFile = file_header::size + image_header::size + 4;

std::size_t PayloadAt(const Bytes& file) {
    return GetField(file, 0, file_header::dataOffset);
}

bool HasPlace(const Bytes& file, std::size_t base, std::size_t size) {
    return base <= file.size() && size <= file.size() - base;
}

} // namespace

ZmiBuilder ZmiMutator::MakeFile() {
    const auto size = [&] { return static_cast<std::uint16_t>(Pick(Pick(4) == 0 ? 200 : 20)); };
    ZmiBuilder file{.mode = Pick(4), .frameTable = Pick(2) == 0};
    file.title.assign(Pick(36), 'T');
    file.gap = Pick(3) == 0 ? Pick(40) : 0;
    file.rest = Pick(40) == 0 ? 70000 : Pick(3);
    file.sharePixels = Pick(8) == 0;
    if (Pick(3) == 0)
        file.transparentKey = Pick(Pick(2) == 0 ? 4 : 0x10000);
    for (std::uint32_t frames = Pick(5); frames > 0; --frames) {
        ZmiFrame frame{size(), size()};
        if (file.sharePixels && !file.frames.empty())
            frame = file.frames[0];
        if (file.mode == 1 && Pick(3) == 0)
            frame.palette = PatternColors(Pick(9));
        if (Pick(6) == 0)
            frame.flags = static_cast<std::uint8_t>(Pick(256));
        file.frames.push_back(frame);
    }
    return file;
}

std::uint32_t ZmiMutator::TellingNumber(const Bytes& file) {
    const auto payload = static_cast<std::uint32_t>(PayloadAt(file));
    const auto end = static_cast<std::uint32_t>(file.size() - 4);
    constexpr std::uint32_t edges[] = {0,   1,   7,      8,      9,          16,        24,
                                       255, 256, 0x7FFF, 0xFFFF, 0x7FFFFFFF, 0x80000000};
    // One Pick a statement or list entry: within an expression, compilers differ in which comes first.
    const std::uint32_t edge = edges[Pick(std::size(edges))];
    const std::uint32_t numbers[] = {edge - Pick(2), end - Pick(600), end + Pick(3), payload + Pick(700) - 2,
                                     payload + Pick(file.size() - payload)};
    return numbers[Pick(std::size(numbers))];
}

void ZmiMutator::Mutate(Bytes& file) {
    Repair(file);
    const std::size_t payload = PayloadAt(file);
    const std::size_t table = GetField(file, payload, image_header::pixelOffset);
    const bool hasTable =
        GetField(file, payload, image_header::flags) % 2 == 1 && HasPlace(file, table, frame_table::size);
    const std::uint32_t frames = hasTable ? GetField(file, table, frame_table::frameCount) : 0;
    const std::size_t record =
        table + frame_table::size + (frames > 0 ? Pick(frames) : 0) * frame_record::size;
    const bool hasRecord = frames > 0 && HasPlace(file, record, frame_record::size);

    switch (Pick(8)) {
    case 0:
    case 1:
    case 2: {
        constexpr Field headerFields[] = {image_header::pixelOffset, image_header::paletteOffset,
                                          image_header::flags, image_header::width, image_header::height};
        constexpr Field recordFields[] = {frame_record::dataOffset, frame_record::paletteOffset,
                                          frame_record::flags, frame_record::width, frame_record::height};
        const bool inRecord = hasRecord && Pick(3) > 0;
        const Field field = (inRecord ? recordFields : headerFields)[Pick(5)];
        SetField(file, inRecord ? record : payload, field, TellingNumber(file));
        break;
    }
    case 3:
        if (hasTable)
            SetField(file, table, frame_table::frameCount,
                     Pick(2) == 0 ? TellingNumber(file) : frames + Pick(3) - 1);
        break;
    case 4: { // another mode, or a frame table where there was none
        const std::size_t at = Pick(2) == 0 && hasRecord ? record + frame_record::flags.offset
                                                         : payload + image_header::flags.offset;
        file[at] = static_cast<std::uint8_t>(file[at] ^ (Pick(2) == 0 ? 8 << Pick(2) : 1));
        break;
    }
    case 5: { // bytes removed or inserted somewhere in the payload
        const auto at = file.begin() + static_cast<std::ptrdiff_t>(payload + Pick(file.size() - payload - 3));
        if (Pick(2) == 0) {
            const std::uint32_t count = Pick(60);
            file.insert(at, count, static_cast<std::uint8_t>(Pick(256)));
        } else
            file.erase(at, at + std::min<std::ptrdiff_t>(Pick(60), file.end() - 4 - at));
        Repair(file);
        break;
    }
    case 6: { // the payload starts earlier or later than its offsets assume, or too early
        const std::uint32_t shift = Pick(5) - 2;
        SetField(file, 0, file_header::dataOffset, static_cast<std::uint32_t>(payload) + shift);
        SetField(file, 0, file_header::dataSize, GetField(file, 0, file_header::dataSize) - shift);
        break;
    }
    default:
        file[Pick(file.size())] = static_cast<std::uint8_t>(Pick(256));
    }
}

void ZmiMutator::Repair(Bytes& file) {
    file.resize(std::max(file.size(), smallestFile));
    FramePayload(file,
                 std::clamp<std::uint32_t>(GetField(file, 0, file_header::dataOffset), file_header::size,
                                           static_cast<std::uint32_t>(file.size() - image_header::size - 4)));
}

} // namespace vantrel::tests
