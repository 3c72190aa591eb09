#include "tools/terminal/LongPath.h"

#include "tools/terminal/Failure.h"

#include <windows.h>

#include <string>
#include <string_view>

namespace vantrel::tools {

namespace {

// A folder's path must leave room for an 8.3 name below it, so the shorter limit is used for both.
constexpr std::size_t longestPlainPath = MAX_PATH - 12 - 1;

} // namespace

std::filesystem::path LongPath(const std::filesystem::path& path) {
    if (path.empty())
        throw UsageError(L"a file name is empty");
    std::wstring absolute(path.native().size() + MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetFullPathNameW(path.c_str(), static_cast<DWORD>(absolute.size()), absolute.data(), nullptr);
        if (length == 0)
            FailWithLastError(path.wstring());
        const bool fits = length < absolute.size();
        absolute.resize(length);
        if (fits)
            break;
    }

    const std::wstring_view view = absolute;
    if (view.size() <= longestPlainPath || view.starts_with(LR"(\\?\)") || view.starts_with(LR"(\\.\)"))
        return absolute;
    if (view.starts_with(LR"(\\)"))
        return LR"(\\?\UNC\)" + absolute.substr(2);
    return LR"(\\?\)" + absolute;
}

} // namespace vantrel::tools
