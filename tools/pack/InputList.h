// From what the user typed to the pictures that are meant: patterns and folders become the files in them.
#pragma once

#include <windows.h>

#include <wincodec.h>

#include <filesystem>
#include <vector>

namespace vantrel::tools {

// A pattern gives the files that match it, a folder those whose extension WIC knows a decoder for; both in
// the order of the numbers in their names. All else stays as it was typed. Throws Failure when a pattern or
// folder gives nothing.
std::vector<std::filesystem::path> ListInputs(IWICImagingFactory& factory,
                                              const std::vector<std::filesystem::path>& typed);

} // namespace vantrel::tools
