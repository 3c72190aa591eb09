// The library as a host uses it: the shipped DLL through its class factories.
#pragma once

#include "support/Handles.h"

#include <objbase.h>

#include <cstdint>
#include <filesystem>
#include <functional>

namespace vantrel::bench {

// Every request creates its own object, calls it once and releases it. A request that fails throws
// std::runtime_error: a benchmark of failures would measure nothing.
class Library {
public:
    explicit Library(const std::filesystem::path& path);

    UniqueBitmap Thumbnail(IStream& stream, unsigned edge) const;
    // The extract-image handler, asked for a square.
    UniqueBitmap Extract(const wchar_t* path, unsigned edge) const;
    // A large icon of 32 and a small one of 16 pixels.
    void IconPair(const wchar_t* path) const;
    // All three from one store.
    void Properties(IStream& stream) const;
    void Column(const wchar_t* path) const;

    // The bytes that the library reads from files while the request runs.
    std::uint64_t CountFileBytes(const std::function<void()>& request) const;

    // Milliseconds from LoadLibrary to the end of FreeLibrary, the median of several loads.
    static double LoadTime(const std::filesystem::path& path);

private:
    void Create(REFCLSID classId, REFIID iid, void** object) const;

    UniqueModule module_;
    LPFNGETCLASSOBJECT getClassObject_ = nullptr;
};

} // namespace vantrel::bench
