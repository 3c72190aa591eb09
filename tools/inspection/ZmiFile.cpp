#include "tools/inspection/ZmiFile.h"

#include "codec/ReadFile.h"
#include "support/FileObject.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/LongPath.h"
#include "tools/terminal/NumberText.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <limits>

namespace vantrel::tools {

namespace {

std::uint64_t SizeOf(const std::filesystem::path& path) {
    FileObject file;
    if (!file.open(path.c_str(), 0, 0, FILE_SHARE_READ | FILE_SHARE_WRITE)) {
        if (const DWORD error = GetLastError(); IsAbsence(error))
            throw Failure(L"file not found", HRESULT_FROM_WIN32(error));
        FailWithLastError(L"it cannot be opened");
    }
    return file.size();
}

std::wstring NotWanted(const wchar_t* field, std::size_t offset, std::uint64_t found, std::uint64_t wanted) {
    return std::wstring(field) + L" at offset " + std::to_wstring(offset) + L" is " + Grouped(found) +
           L", not " + Grouped(wanted);
}

} // namespace

ZmiFile::ZmiFile(const std::filesystem::path& path)
    : path_(LongPath(path)), size_(SizeOf(path_)), source_(path_.c_str()),
      isOpen_(readFile(source_, zmiPictureKind, header_, payload_)),
      frames_(isOpen_ ? *payload_ : payload_.emplace(source_, 0, 0)) {}

bool ZmiFile::IsZmi() const {
    return std::memcmp(header_.magic, zmiMagic, sizeof zmiMagic) == 0;
}

std::wstring ZmiFile::Title() const {
    const char(&text)[sizeof(ImageHeader::text)] = frames_.Image().text;
    const auto end = static_cast<const char*>(std::memchr(text, 0, sizeof text));
    const int length = static_cast<int>(end ? end - text : std::ptrdiff_t{sizeof text});
    wchar_t title[sizeof text];
    const int count = MultiByteToWideChar(CP_ACP, 0, text, length, title, static_cast<int>(std::size(title)));
    return {title, static_cast<std::size_t>(count)};
}

std::uint64_t ZmiFile::RecordOffset(std::uint16_t index) const {
    const ImageHeader& image = frames_.Image();
    if ((image.flags & frameTableFlag) == 0)
        return header_.dataOffset;
    return image.pixelOffset + sizeof(FrameTableHeader) + index * std::uint64_t{sizeof(FrameRecord)};
}

std::wstring ZmiFile::Outside(const std::wstring& what, std::uint64_t offset, std::uint64_t count) const {
    const std::uint64_t begin = header_.dataOffset;
    return L"outside the payload (" + Grouped(begin) + L" to " + Grouped(begin + header_.dataSize) + L"): " +
           what + L", " + Grouped(count) + L" bytes at offset " + Grouped(offset);
}

std::wstring ZmiFile::HeaderFault() const {
    if (size_ == 0)
        return L"the file is empty";
    if (size_ < sizeof(FileHeader))
        return L"the file has " + Grouped(size_) + L" bytes, fewer than its 112-byte header";
    if (!IsZmi())
        return L"not a ZMI file (it does not start with \"zpix-zmi\")";
    if (header_.version != zmiVersion)
        return NotWanted(L"version", offsetof(FileHeader, version), header_.version, zmiVersion);
    if (header_.headerSize != sizeof(FileHeader))
        return NotWanted(L"header size", offsetof(FileHeader, headerSize), header_.headerSize,
                         sizeof(FileHeader));
    if (header_.kind != zmiPictureKind)
        return NotWanted(L"kind", offsetof(FileHeader, kind), header_.kind, zmiPictureKind);
    if (header_.dataOffset < sizeof(FileHeader))
        return L"data offset at offset " + std::to_wstring(offsetof(FileHeader, dataOffset)) + L" is " +
               Grouped(header_.dataOffset) + L", inside the header";
    const std::uint64_t end = std::uint64_t{header_.dataOffset} + header_.dataSize;
    const std::uint64_t wanted = end + sizeof zmiTrailer;
    if (size_ < wanted)
        return L"the file is cut short: " + Grouped(size_) + L" of " + Grouped(wanted) +
               L" bytes (header offsets 18 and 22)";
    if (size_ > wanted)
        return L"the file is too long: " + Grouped(size_) + L" bytes instead of " + Grouped(wanted) +
               L" (header offsets 18 and 22)";
    if (end > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()))
        return L"the payload ends at " + Grouped(end) + L", beyond 2 GiB";
    return L"trailer tag at offset " + Grouped(end) + L" is not zpix";
}

std::wstring ZmiFile::Fault() const {
    if (!isOpen_)
        return HeaderFault();
    const ImageHeader& image = frames_.Image();
    switch (frames_.Fault()) {
    case FileFault::None:
        return {};
    case FileFault::ImageHeader:
        return L"the payload at offset " + Grouped(header_.dataOffset) + L" has " +
               Grouped(header_.dataSize) + L" bytes, fewer than its 55-byte image header";
    case FileFault::FrameTable:
        return Outside(L"the frame table", image.pixelOffset, sizeof(FrameTableHeader));
    case FileFault::FrameRecords:
        return Outside(L"the list of frame records", RecordOffset(0),
                       frames_.Table().frameCount * sizeof(FrameRecord));
    case FileFault::NoFrame:
        return L"the frame table at offset " + Grouped(image.pixelOffset) + L" contains no frames";
    }
    return {};
}

std::wstring ZmiFile::FaultOf(std::uint16_t index, const std::optional<FileFrame>& frame) const {
    if (!frame)
        return L"the record at offset " + Grouped(RecordOffset(index)) + L" cannot be read";
    const bool hasTable = (frames_.Image().flags & frameTableFlag) != 0;
    const std::uint64_t flagsOffset =
        RecordOffset(index) + (hasTable ? offsetof(FrameRecord, flags) : offsetof(ImageHeader, flags));
    const std::wstring name = L"frame " + std::to_wstring(index + 1);
    const std::wstring itsMode = name + L"'s own pixel mode, at offset " + Grouped(flagsOffset) + L",";
    switch (frame->fault) {
    case FrameFault::None:
        return {};
    case FrameFault::Palette:
        return Outside(L"the colour table of " + name, frame->paletteOffset, sizeof(Palette));
    case FrameFault::Pixels:
        return Outside(L"the pixels of " + name, frame->record.frameDataOffset, frame->pixelByteCount);
    case FrameFault::ReservedMode:
        return name + L" is in pixel mode 3, by its flags at offset " + Grouped(flagsOffset) +
               L", which can't be displayed";
    case FrameFault::NoPalette:
        return itsMode + L" needs a colour table, but the file's mode has none";
    case FrameFault::TooFewPixels:
        return itsMode + L" needs more bytes than the " + Grouped(frame->pixelByteCount) +
               L" that the file's mode provides";
    case FrameFault::Empty:
        return name + L" is " + SizeText(frame->record.width, frame->record.height) +
               L" pixels, which leaves nothing to show";
    }
    return {};
}

std::wstring OpenZmiFile(const std::filesystem::path& path, std::optional<ZmiFile>& file) {
    try {
        return file.emplace(path).Fault();
    } catch (const Failure& failure) {
        return failure.Message();
    }
}

std::optional<std::wstring> FindFault(const std::filesystem::path& path, unsigned& width, unsigned& height) {
    std::optional<ZmiFile> file;
    if (const std::wstring fault = OpenZmiFile(path, file); !fault.empty())
        return fault;
    FrameReader& frames = file->Frames();
    for (std::uint16_t i = 0; i < frames.FrameCount(); ++i) {
        const auto frame = frames.Frame(i);
        // A fault that prevents loading counts in any frame, one that prevents showing only in the first.
        if (i == 0 || !frame || PreventsLoading(frame->fault))
            if (const std::wstring fault = file->FaultOf(i, frame); !fault.empty())
                return fault;
        if (i == 0) {
            width = frame->record.width;
            height = frame->record.height;
        }
    }
    return std::nullopt;
}

unsigned SmallestThumbnail(unsigned width, unsigned height) {
    const auto [narrow, wide] = std::minmax(width, height);
    return narrow ? (wide + narrow - 1) / narrow : 0;
}

} // namespace vantrel::tools
