// The peak memory of one request, measured in its own process.
#pragma once

#include "benchmarks/Pictures.h"

#include <cstdint>
#include <filesystem>

namespace vantrel::bench {

// The peak growth of the working set, in bytes, while making a thumbnail of 256 from the picture at the path.
// Starts this program again for it, with the arguments that ServeWorkingSet takes. Throws std::runtime_error.
std::uint64_t PeakGrowth(const std::filesystem::path& dll, const std::wstring& warmUp,
                         const std::wstring& path);

// The child process: makes a thumbnail of a small picture, so that everything permanent is allocated, then
// the measured one. Returns the growth in KiB, which becomes the exit code.
int ServeWorkingSet(const std::filesystem::path& dll, const wchar_t* warmUp, const wchar_t* path);

} // namespace vantrel::bench
