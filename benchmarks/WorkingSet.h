// How much memory one request takes at its peak, measured in a process of its own.
#pragma once

#include "benchmarks/Pictures.h"

#include <cstdint>
#include <filesystem>

namespace vantrel::bench {

// Bytes by which the working set grows at most while the picture at the path is made a thumbnail of 256.
// Starts this program again for it, with the arguments that ServeWorkingSet takes. Throws std::runtime_error.
std::uint64_t PeakGrowth(const std::filesystem::path& dll, const std::wstring& warmUp,
                         const std::wstring& path);

// The other end: makes a thumbnail of a small picture, so that all that stays is there, then the measured
// one. Returns the growth in KiB, which becomes the exit code.
int ServeWorkingSet(const std::filesystem::path& dll, const wchar_t* warmUp, const wchar_t* path);

} // namespace vantrel::bench
