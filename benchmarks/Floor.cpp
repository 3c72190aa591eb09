#include "benchmarks/Floor.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>

namespace vantrel::bench {

namespace {

constexpr std::uint32_t opaque = 0xFF000000;
constexpr std::uint32_t background = 0x00FFFF00;

using Buffer = std::unique_ptr<std::uint8_t[]>;

void Require(bool succeeded) {
    if (!succeeded)
        throw std::runtime_error("the floor failed");
}

UniqueKernelHandle Open(const wchar_t* path) {
    return UniqueKernelHandle(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
}

Buffer ReadAll(IStream& stream) {
    STATSTG stat;
    Require(stream.Stat(&stat, STATFLAG_NONAME) == S_OK && stream.Seek({}, STREAM_SEEK_SET, nullptr) == S_OK);
    const auto size = static_cast<ULONG>(stat.cbSize.QuadPart);
    Buffer buffer = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    ULONG done;
    Require(stream.Read(buffer.get(), size, &done) == S_OK);
    return buffer;
}

Buffer ReadAll(const wchar_t* path) {
    const UniqueKernelHandle file = Open(path);
    const DWORD size = GetFileSize(file.get(), nullptr);
    Buffer buffer = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    DWORD done;
    Require(ReadFile(file.get(), buffer.get(), size, &done, nullptr) && done == size);
    return buffer;
}

alignas(64) std::uint8_t g_window[64 * 1024];

// Header, trailer, then the payload; if the file fits, the trailer is read with the payload.
template <class Read>
void WindowRead(std::uint64_t size, Read read) {
    constexpr std::uint64_t headerBytes = 112, trailerBytes = 4;
    std::uint64_t end = size;
    Require(read(0, headerBytes));
    if (size - headerBytes > sizeof g_window) {
        end -= trailerBytes;
        Require(read(end, trailerBytes));
    }
    for (std::uint64_t at = headerBytes; at < end; at += sizeof g_window)
        Require(read(at, static_cast<DWORD>(std::min<std::uint64_t>(sizeof g_window, end - at))));
}

// A picture that stays selected into a context.
class Surface {
public:
    Surface(int width, int height)
        : pixels_(static_cast<std::size_t>(width) * static_cast<unsigned>(height)) {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        bitmap_.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        Require(bitmap_ != nullptr);
        bits_ = static_cast<std::uint32_t*>(bits);
    }

    void Fill(std::uint32_t word) const { std::fill_n(bits_, pixels_, word); }

    void MakeOpaque() const {
        for (std::size_t i = 0; i < pixels_; ++i)
            bits_[i] |= opaque;
    }
    void MakeOpaqueButBackground() const {
        for (std::size_t i = 0; i < pixels_; ++i)
            bits_[i] |= bits_[i] == background ? 0 : opaque;
    }

    HBITMAP Bitmap() const { return bitmap_.get(); }
    UniqueBitmap Take() { return std::move(bitmap_); }

private:
    UniqueBitmap bitmap_;
    std::uint32_t* bits_;
    std::size_t pixels_;
};

struct Box {
    int left, top, width, height;
};

Box Fit(int width, int height, int edge) {
    const double scale = std::min(static_cast<double>(edge) / width, static_cast<double>(edge) / height);
    const auto fitted = [scale](int length) { return static_cast<int>(scale * length); };
    return {(edge - fitted(width)) / 2, (edge - fitted(height)) / 2, fitted(width), fitted(height)};
}

void Scale(const Surface& source, int width, int height, const Surface& target, Box box) {
    const UniqueDc sourceDc(CreateCompatibleDC(nullptr));
    const UniqueDc targetDc(CreateCompatibleDC(nullptr));
    const HGDIOBJ sourceBefore = SelectObject(sourceDc.get(), source.Bitmap());
    const HGDIOBJ targetBefore = SelectObject(targetDc.get(), target.Bitmap());
    SetStretchBltMode(targetDc.get(), HALFTONE);
    Require(StretchBlt(targetDc.get(), box.left, box.top, box.width, box.height, sourceDc.get(), 0, 0, width,
                       height, SRCCOPY));
    GdiFlush();
    SelectObject(sourceDc.get(), sourceBefore);
    SelectObject(targetDc.get(), targetBefore);
}

template <class Source>
UniqueBitmap Thumbnail(Source& source, int width, int height, int edge) {
    const Buffer bytes = ReadAll(source);
    const Surface natural(width, height);
    natural.Fill(0x00336699);
    const Box box = Fit(width, height, edge);
    Surface result(box.width, box.height);
    Scale(natural, width, height, result, {0, 0, box.width, box.height});
    result.MakeOpaque();
    return result.Take();
}

} // namespace

void FloorRead(IStream& stream) {
    ReadAll(stream);
}

void FloorRead(const wchar_t* path) {
    ReadAll(path);
}

void WindowRead(IStream& stream) {
    STATSTG stat;
    Require(stream.Stat(&stat, STATFLAG_NONAME) == S_OK);
    WindowRead(stat.cbSize.QuadPart, [&](std::uint64_t offset, DWORD count) {
        LARGE_INTEGER distance;
        distance.QuadPart = static_cast<LONGLONG>(offset);
        ULONG done;
        return stream.Seek(distance, STREAM_SEEK_SET, nullptr) == S_OK &&
               stream.Read(g_window, count, &done) == S_OK;
    });
}

void WindowRead(const wchar_t* path) {
    const UniqueKernelHandle file = Open(path);
    std::uint64_t position = 0;
    WindowRead(GetFileSize(file.get(), nullptr), [&](std::uint64_t offset, DWORD count) {
        if (offset != position)
            SetFilePointer(file.get(), static_cast<LONG>(offset), nullptr, FILE_BEGIN);
        position = offset + count;
        DWORD done;
        return ReadFile(file.get(), g_window, count, &done, nullptr) && done == count;
    });
}

UniqueBitmap FloorThumbnail(IStream& stream, int width, int height, int edge) {
    return Thumbnail(stream, width, height, edge);
}

UniqueBitmap FloorThumbnail(const wchar_t* path, int width, int height, int edge) {
    return Thumbnail(path, width, height, edge);
}

void FloorIconPair(const wchar_t* path, int width, int height) {
    const Buffer bytes = ReadAll(path);
    const Surface natural(width, height);
    natural.Fill(0x00336699);
    for (const int edge : {32, 16}) {
        const Surface mask(edge, edge);
        mask.Fill(0);
        const Surface color(edge, edge);
        color.Fill(background);
        Scale(natural, width, height, color, Fit(width, height, edge));
        color.MakeOpaqueButBackground();
        ICONINFO info{};
        info.fIcon = TRUE;
        info.hbmMask = mask.Bitmap();
        info.hbmColor = color.Bitmap();
        const HICON icon = CreateIconIndirect(&info);
        Require(icon != nullptr);
        DestroyIcon(icon);
    }
}

} // namespace vantrel::bench
