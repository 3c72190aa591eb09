// What a tool may overwrite.
#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <utility>

namespace vantrel::tools {

enum class FileKind { Zmi, Png, Gif };

class OutputGuard {
public:
    // With force, existing files of another kind are replaced, too.
    explicit OutputGuard(bool force = false) : force_(force) {}

    // Files that are read are never written, under whatever name. One that can't be opened is left out.
    void Protect(const std::filesystem::path& input);

    // Throws UsageError for a target whose extension is not that of its kind, which is a protected file, or
    // which exists and, by its first bytes, is of another kind; Failure for one that can't be looked at.
    void Check(const std::filesystem::path& target, FileKind kind) const;

private:
    using Identity = std::pair<std::uint32_t, std::uint64_t>; // volume, and file on it

    bool force_;
    std::set<Identity> protected_;
};

} // namespace vantrel::tools
