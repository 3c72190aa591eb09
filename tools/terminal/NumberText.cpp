#include "tools/terminal/NumberText.h"

#include <array>
#include <cwchar>

namespace vantrel::tools {

std::wstring Grouped(std::uint64_t number) {
    std::wstring digits = std::to_wstring(number);
    for (std::size_t i = digits.size(); i > 3; i -= 3)
        digits.insert(i - 3, 1, L',');
    return digits;
}

std::wstring SizeText(std::int64_t width, std::int64_t height) {
    return std::to_wstring(width) + L" x " + std::to_wstring(height);
}

std::wstring Hexadecimal(std::uint32_t number, int digits) {
    std::array<wchar_t, 12> text{};
    std::swprintf(text.data(), text.size(), L"%0*X", digits, static_cast<unsigned>(number));
    return text.data();
}

} // namespace vantrel::tools
