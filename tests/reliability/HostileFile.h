// Large and odd ZMI files for measurements, sparse on disk: their pixels are holes.
#pragma once

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

// Creates or replaces the file. Returns its size in bytes, 0 on failure.
std::uint64_t Write(const HostileFile& file, const std::wstring& path);

} // namespace vantrel::tests
