// Large and odd ZMI files for measurements, sparse on disk: their pixels are holes.
#pragma once

#include "support/Handles.h"
#include "tests/builder/FileFacts.h"

#include <windows.h>

#include <winioctl.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace vantrel::tests {

struct HostileFile {
    const char* name;
    unsigned mode = 2;
    std::uint16_t width = 0; // of every frame, in pixels
    std::uint16_t height = 0;
    std::uint32_t frames = 1;
    bool sharePixels = false;     // every frame uses the first one's pixels
    bool loads = true;            // else the file ends where the pixels should start
    std::uint64_t payloadEnd = 0; // file offset; 0: where the last pixels end
};

// Creates or replaces the file; false if that fails.
inline bool Write(const HostileFile& file, const std::wstring& path) {
    // Built with empty frames; their sizes are set afterwards.
    const ZmiBuilder builder{.mode = file.mode, .frames = std::vector<ZmiFrame>(file.frames)};
    Bytes bytes = builder.Build();
    const std::uint64_t pixelsAt = FileFacts(bytes).PixelsAt(0);
    const std::uint64_t pixelBytes = file.loads ? PixelBytes(file.mode, file.width, file.height) : 0;
    SetField(bytes, builder.PayloadAt(), image_header::width, file.width);
    SetField(bytes, builder.PayloadAt(), image_header::height, file.height);
    for (std::size_t i = 0; builder.HasFrameTable() && i < file.frames; ++i) {
        const std::uint64_t at = pixelsAt + (file.sharePixels ? 0 : i * pixelBytes);
        SetField(bytes, builder.RecordAt(i), frame_record::dataOffset, static_cast<std::uint32_t>(at));
        SetField(bytes, builder.RecordAt(i), frame_record::width, file.width);
        SetField(bytes, builder.RecordAt(i), frame_record::height, file.height);
    }
    const std::uint64_t ranges = file.sharePixels ? 1 : file.frames;
    const std::uint64_t payloadEnd = std::max(file.payloadEnd, pixelsAt + ranges * pixelBytes);
    SetField(bytes, 0, file_header::dataSize, static_cast<std::uint32_t>(payloadEnd - builder.PayloadAt()));

    const UniqueKernelHandle handle(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD done = 0;
    // Fails under Wine, which leaves holes anyway.
    DeviceIoControl(handle.get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &done, nullptr);
    const auto write = [&](std::uint64_t offset, const void* data, std::size_t size) {
        LARGE_INTEGER distance;
        distance.QuadPart = static_cast<std::int64_t>(offset);
        return SetFilePointerEx(handle.get(), distance, nullptr, FILE_BEGIN) &&
               WriteFile(handle.get(), data, static_cast<DWORD>(size), &done, nullptr) && done == size;
    };
    const std::size_t trailer = bytes.size() - 4;
    return write(0, bytes.data(), trailer) && write(payloadEnd, &bytes[trailer], 4);
}

} // namespace vantrel::tests
