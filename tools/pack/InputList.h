// Turns what the user typed into a list of pictures: patterns and folders become the files in them.
#pragma once

#include <windows.h>

#include <wincodec.h>

#include <filesystem>
#include <vector>

namespace vantrel::tools {

// A pattern gives the files that match it, a folder those whose extension WIC has a decoder for; both in the
// order of the numbers in their names. Everything else stays as typed. Throws Failure if a pattern or folder
// gives nothing.
std::vector<std::filesystem::path> ListInputs(IWICImagingFactory& factory,
                                              const std::vector<std::filesystem::path>& typed);

} // namespace vantrel::tools
