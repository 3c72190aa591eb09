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
    // With force, existing files of other kinds are replaced as well.
    explicit OutputGuard(bool force = false) : force_(force) {}

    // Marks an input, which is then never overwritten, under whatever name. A file that can't be opened is
    // ignored.
    void Protect(const std::filesystem::path& input);

    // Throws UsageError for a target whose extension does not match its kind, which is a protected file, or
    // which exists and, by its first bytes, is of another kind; Failure for one that can't be examined.
    void Check(const std::filesystem::path& target, FileKind kind) const;

private:
    using Identity = std::pair<std::uint32_t, std::uint64_t>; // volume and file identifier

    bool force_;
    std::set<Identity> protected_;
};

} // namespace vantrel::tools
