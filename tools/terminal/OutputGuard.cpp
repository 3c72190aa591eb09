#include "tools/terminal/OutputGuard.h"

#include "codec/ZmiFormat.h"
#include "support/Handles.h"
#include "tools/terminal/Failure.h"
#include "tools/terminal/FileName.h"
#include "tools/terminal/LongPath.h"

#include <array>
#include <iterator>
#include <optional>
#include <string_view>
#include <vector>

namespace vantrel::tools {

namespace {

struct KindOfFile {
    const wchar_t* name;
    const wchar_t* extension;
    std::string_view firstBytes;
};
constexpr std::array<KindOfFile, 3> kinds = {{{L"ZMI", L".zmi", {zmiMagic, std::size(zmiMagic)}},
                                              {L"PNG", L".png", "\x89PNG\r\n\x1A\n"},
                                              {L"GIF", L".gif", "GIF8"}}};

// Null if the file can't be opened; see GetLastError.
UniqueKernelHandle Open(const std::filesystem::path& path, DWORD access) {
    constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle =
        CreateFileW(LongPath(path).c_str(), access, shareAll, nullptr, OPEN_EXISTING, 0, nullptr);
    return UniqueKernelHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

std::optional<std::pair<std::uint32_t, std::uint64_t>> IdentityOf(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION info{};
    if (!GetFileInformationByHandle(file, &info))
        return std::nullopt;
    return std::pair(std::uint32_t{info.dwVolumeSerialNumber},
                     std::uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow);
}

bool BeginsWith(HANDLE file, std::string_view bytes) {
    std::array<char, 16> start{};
    DWORD count = 0;
    return ReadFile(file, start.data(), static_cast<DWORD>(start.size()), &count, nullptr) &&
           std::string_view(start.data(), count).starts_with(bytes);
}

} // namespace

void OutputGuard::Protect(const std::filesystem::path& input) {
    if (const UniqueKernelHandle file = Open(input, FILE_READ_ATTRIBUTES))
        if (const auto identity = IdentityOf(file.get()))
            protected_.insert(*identity);
}

void OutputGuard::Check(const std::filesystem::path& target, FileKind kind, NameOrigin origin) const {
    const KindOfFile& wanted = kinds[static_cast<std::size_t>(kind)];
    const std::wstring name = target.wstring();
    if (!HasExtension(target, wanted.extension))
        throw UsageError(L"the name of a " + std::wstring(wanted.name) + L" file must end in " +
                         wanted.extension + L", not \"" + name + L"\"");

    const DWORD attributes = GetFileAttributesW(LongPath(target).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        throw Failure(name + L": this is a folder and can't be replaced by a file");
    const UniqueKernelHandle file = Open(target, GENERIC_READ);
    if (!file) {
        if (IsAbsence(GetLastError()))
            return;
        FailWithLastError(name);
    }
    const auto identity = IdentityOf(file.get());
    if (!identity)
        FailWithLastError(name);
    if (protected_.contains(*identity))
        throw Refusal(name + L": this is one of the input files and is not overwritten");
    if (origin == NameOrigin::Typed && !force_ && !BeginsWith(file.get(), wanted.firstBytes))
        throw Refusal(name + L": this already exists and is not a " + wanted.name +
                      L" file; use --force to replace it");
}

bool HaveSameBytes(const std::filesystem::path& left, const std::filesystem::path& right) {
    struct Side {
        UniqueKernelHandle file;
        std::vector<char> bytes = std::vector<char>(1U << 16);
        DWORD count = 0;
    };
    std::array<Side, 2> sides = {{{Open(left, GENERIC_READ)}, {Open(right, GENERIC_READ)}}};
    do {
        for (Side& side : sides) {
            const auto size = static_cast<DWORD>(side.bytes.size());
            if (!side.file || !ReadFile(side.file.get(), side.bytes.data(), size, &side.count, nullptr))
                FailWithLastError(left.wstring() + L": cannot be compared");
        }
        if (sides[0].count != sides[1].count || sides[0].bytes != sides[1].bytes)
            return false;
    } while (sides[0].count > 0);
    return true;
}

} // namespace vantrel::tools
