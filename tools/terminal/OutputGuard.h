// What a tool may overwrite.
#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <utility>

namespace vantrel::tools {

enum class FileKind { Zmi, Png, Gif };

// Whether the user typed an output's name or the tool made it up.
enum class NameOrigin { Typed, MadeUp };

// An existing file with a typed name may be replaced if it is of the same kind; one with a name that the user
// may not even know of, only by the same bytes. With force, both are replaced whatever they are.
class OutputGuard {
public:
    explicit OutputGuard(bool force = false) : force_(force) {}

    // Marks an input, which is then never overwritten, under whatever name. A file that can't be opened is
    // ignored.
    void Protect(const std::filesystem::path& input);

    // Throws UsageError for a target with another kind's extension; Refusal for a protected file and, if its
    // name was typed, for a file of another kind; Failure for a folder and what can't be examined. Whether a
    // file with a made-up name is replaced turns out in OutputFile::Commit, which knows the new bytes.
    void Check(const std::filesystem::path& target, FileKind kind, NameOrigin origin) const;

    // True if the existing file with a name may be replaced by other bytes, once it is checked.
    bool MayReplace(NameOrigin origin) const { return force_ || origin == NameOrigin::Typed; }

private:
    using Identity = std::pair<std::uint32_t, std::uint64_t>; // volume and file identifier

    bool force_;
    std::set<Identity> protected_;
};

// Compares two files piece by piece. Throws Failure, which names the first, if they can't be read.
bool HaveSameBytes(const std::filesystem::path& left, const std::filesystem::path& right);

} // namespace vantrel::tools
