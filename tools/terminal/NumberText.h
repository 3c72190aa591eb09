// Numbers as text for people.
#pragma once

#include <cstdint>
#include <string>

namespace vantrel::tools {

// With the digits grouped in threes, for sizes, offsets and counts: "1,234,567".
std::wstring Grouped(std::uint64_t number);

// "640 x 480".
std::wstring SizeText(std::int64_t width, std::int64_t height);

// Upper-case hexadecimal, with leading zeros up to this many digits.
std::wstring Hexadecimal(std::uint32_t number, int digits);

} // namespace vantrel::tools
