#include "tools/preview/doctor/ZmiFileCheck.h"

#include "support/Handles.h"
#include "tools/terminal/Failure.h"

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace vantrel::tools {

namespace {

constexpr std::uint64_t headerSize = 112;
constexpr std::uint64_t imageHeaderSize = 55;
constexpr std::uint64_t paletteSize = 512;
constexpr std::uint64_t frameTableSize = 8;
constexpr std::uint64_t frameRecordSize = 27;
constexpr unsigned unpaintedMode = 3;

// Digits in groups of three, as file sizes and offsets are read best.
std::wstring Grouped(std::uint64_t number) {
    std::wstring digits = std::to_wstring(number);
    for (std::size_t i = digits.size(); i > 3; i -= 3)
        digits.insert(i - 3, 1, L',');
    return digits;
}

std::wstring NotWanted(const wchar_t* field, std::uint64_t offset, std::uint64_t found,
                       std::uint64_t wanted) {
    return std::wstring(field) + L" at offset " + std::to_wstring(offset) + L" is " + Grouped(found) +
           L", not " + Grouped(wanted);
}

// Little-endian numbers at byte offsets of a record that is in memory.
class Record {
public:
    explicit Record(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}
    const std::uint8_t* Bytes() const { return bytes_.data(); }
    std::uint8_t Byte(std::size_t offset) const { return bytes_[offset]; }
    std::uint32_t Half(std::size_t offset) const { return bytes_[offset] + bytes_[offset + 1] * 256U; }
    std::uint32_t Word(std::size_t offset) const { return Half(offset) + Half(offset + 2) * 65536U; }

private:
    std::vector<std::uint8_t> bytes_;
};

class ZmiFile {
public:
    explicit ZmiFile(const std::filesystem::path& path) {
        const HANDLE handle = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, 0, nullptr);
        if (handle == INVALID_HANDLE_VALUE)
            Check(HRESULT_FROM_WIN32(GetLastError()), L"it cannot be opened");
        handle_.reset(handle);
        LARGE_INTEGER size{};
        if (!GetFileSizeEx(handle, &size))
            Check(HRESULT_FROM_WIN32(GetLastError()), L"its size cannot be read");
        size_ = static_cast<std::uint64_t>(size.QuadPart);
    }

    std::uint64_t Size() const { return size_; }

    Record Read(std::uint64_t offset, std::uint64_t count) const {
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count));
        LARGE_INTEGER position{};
        position.QuadPart = static_cast<LONGLONG>(offset);
        DWORD read = 0;
        if (!SetFilePointerEx(handle_.get(), position, nullptr, FILE_BEGIN) ||
            !ReadFile(handle_.get(), bytes.data(), static_cast<DWORD>(count), &read, nullptr))
            Check(HRESULT_FROM_WIN32(GetLastError()), L"offset " + Grouped(offset) + L" cannot be read");
        if (read != count)
            throw Failure(L"it ends before offset " + Grouped(offset + count), E_FAIL);
        return Record(std::move(bytes));
    }

private:
    UniqueKernelHandle handle_;
    std::uint64_t size_ = 0;
};

struct Payload {
    std::uint64_t begin;
    std::uint64_t end;

    // Throws Failure for a range that is not wholly inside.
    void Require(const std::wstring& what, std::uint64_t offset, std::uint64_t count) const {
        if (offset < begin || offset + count > end)
            throw Failure(L"outside the payload (" + Grouped(begin) + L" to " + Grouped(end) + L"): " + what +
                          L", " + Grouped(count) + L" bytes at offset " + Grouped(offset));
    }
};

Payload CheckHeader(const ZmiFile& file) {
    if (file.Size() < headerSize)
        throw Failure(file.Size() == 0 ? L"the file is empty"
                                       : L"the file has " + Grouped(file.Size()) +
                                             L" bytes, fewer than its 112-byte header");
    const Record header = file.Read(0, headerSize);
    if (std::memcmp(header.Bytes(), "zpix-zmi", 9) != 0)
        throw Failure(L"magic at offset 0 is not zpix-zmi");
    if (header.Word(9) != 1)
        throw Failure(NotWanted(L"version", 9, header.Word(9), 1));
    if (header.Word(13) != headerSize)
        throw Failure(NotWanted(L"header size", 13, header.Word(13), headerSize));
    if (header.Byte(17) != 1)
        throw Failure(NotWanted(L"kind", 17, header.Byte(17), 1));
    const Payload payload{header.Word(18), std::uint64_t{header.Word(18)} + header.Word(22)};
    if (payload.begin < headerSize)
        throw Failure(L"data offset at offset 18 is " + Grouped(payload.begin) + L", inside the header");
    if (const std::uint64_t wanted = payload.end + 4; wanted != file.Size()) {
        const bool isShort = file.Size() < wanted;
        throw Failure(L"data offset and data size at offsets 18 and 22 make " + Grouped(wanted) +
                      L" bytes with the trailer, but the file has " + Grouped(file.Size()) + L", " +
                      Grouped(isShort ? wanted - file.Size() : file.Size() - wanted) +
                      (isShort ? L" too few" : L" too many"));
    }
    if (payload.end > INT32_MAX)
        throw Failure(L"the payload ends at " + Grouped(payload.end) + L", beyond 2 GiB");
    if (std::memcmp(file.Read(payload.end, 4).Bytes(), "zpix", 4) != 0)
        throw Failure(L"trailer tag at offset " + Grouped(payload.end) + L" is not zpix");
    if (payload.end - payload.begin < imageHeaderSize)
        throw Failure(L"the payload has " + Grouped(payload.end - payload.begin) +
                      L" bytes, fewer than its 55-byte image header");
    return payload;
}

// A frame record, or a single picture's image header seen as one.
struct Frame {
    std::uint64_t pixelOffset;
    std::uint64_t paletteOffset;
    std::uint64_t width;
    std::uint64_t height;
    unsigned mode;
};

unsigned ModeOf(std::uint8_t flags) {
    return flags >> 3 & 3U;
}

std::uint64_t PixelBytes(const Frame& frame, unsigned mode) {
    if (mode == 0)
        return frame.height * ((frame.width + 7) / 8);
    return frame.width * frame.height * (mode == 2 ? 2 : 1);
}

Frame CheckPicture(const ZmiFile& file, const Payload& payload) {
    const Record image = file.Read(payload.begin, imageHeaderSize);
    const std::uint64_t pixelOffset = image.Word(34);
    const std::uint64_t paletteOffset = image.Word(38);
    if (pixelOffset == 0)
        return {0, 0, 1024, 600, 0}; // the blank default picture
    const unsigned mode = ModeOf(image.Byte(50));
    if (mode == 1)
        payload.Require(L"the colour table", paletteOffset, paletteSize);

    std::vector<Frame> frames;
    if ((image.Byte(50) & 1) == 0) {
        frames.push_back({pixelOffset, paletteOffset, image.Half(51), image.Half(53), mode});
    } else {
        payload.Require(L"the frame table", pixelOffset, frameTableSize);
        const std::uint64_t count = file.Read(pixelOffset, frameTableSize).Half(4);
        const std::uint64_t first = pixelOffset + frameTableSize;
        payload.Require(L"the list of frame records", first, count * frameRecordSize);
        const Record records = file.Read(first, count * frameRecordSize);
        for (std::size_t at = 0; at < count * frameRecordSize; at += frameRecordSize)
            frames.push_back({records.Word(at), records.Word(at + 4), records.Half(at + 17),
                              records.Half(at + 19), ModeOf(records.Byte(at + 16))});
        if (frames.empty())
            throw Failure(L"the frame table at offset " + Grouped(pixelOffset) + L" holds no frame");
    }
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const std::wstring name = L"frame " + std::to_wstring(i);
        if (mode == 1 && i > 0)
            payload.Require(L"the colour table of " + name, frames[i].paletteOffset, paletteSize);
        payload.Require(L"the pixels of " + name, frames[i].pixelOffset, PixelBytes(frames[i], mode));
    }
    const Frame& shown = frames.front();
    if (shown.mode == unpaintedMode)
        throw Failure(L"frame 0 is in pixel mode 3, which is never painted");
    if (shown.width == 0 || shown.height == 0)
        throw Failure(L"frame 0 is " + std::to_wstring(shown.width) + L" x " + std::to_wstring(shown.height) +
                      L" pixels, which leaves nothing to show");
    if (shown.mode == 1 && mode != 1)
        throw Failure(L"frame 0 wants a colour table, and the file has none");
    if (PixelBytes(shown, shown.mode) > PixelBytes(shown, mode))
        throw Failure(L"frame 0's own pixel mode needs more bytes than the file gives it");
    return shown;
}

} // namespace

std::optional<std::wstring> FindFault(const std::filesystem::path& file, unsigned* width, unsigned* height) {
    try {
        const ZmiFile opened(file);
        const Frame shown = CheckPicture(opened, CheckHeader(opened));
        if (width && height) {
            *width = static_cast<unsigned>(shown.width);
            *height = static_cast<unsigned>(shown.height);
        }
    } catch (const Failure& failure) {
        return failure.Message();
    }
    return std::nullopt;
}

} // namespace vantrel::tools
