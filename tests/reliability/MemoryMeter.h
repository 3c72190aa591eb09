// What the library has in memory, counted at its imports.
#pragma once

#include "tests/door/ImportHook.h"
#include "tests/door/TheDll.h"

#include <malloc.h>

#include <map>

namespace vantrel::tests {

// Counts what the DLL takes and gives back: heap blocks and DIB sections. What the system takes on its own
// during a call is not in it. One at a time.
class MemoryMeter {
public:
    // What is held at this moment counts as none from here on.
    void Start() {
        sections_.clear();
        held_ = 0;
        peak_ = 0;
    }
    // The most bytes held at one time since Start; 0 when nothing has been taken.
    std::int64_t Peak() const { return peak_; }

private:
    static std::int64_t Size(void* block) { return block ? static_cast<std::int64_t>(_msize(block)) : 0; }
    void Count(std::int64_t bytes) {
        held_ += bytes;
        peak_ = std::max(peak_, held_);
    }
    void* Counted(void* block) {
        Count(Size(block));
        return block;
    }

    std::int64_t held_ = 0;
    std::int64_t peak_ = 0;
    std::map<HGDIOBJ, std::int64_t> sections_;

    ImportHook<"malloc", void*(std::size_t)> malloc_{
        TheDll(), [this](auto original, std::size_t size) { return Counted(original(size)); }};
    ImportHook<"calloc", void*(std::size_t, std::size_t)> calloc_{
        TheDll(), [this](auto original, std::size_t count, std::size_t size) {
            return Counted(original(count, size));
        }};
    ImportHook<"realloc", void*(void*, std::size_t)> realloc_{
        TheDll(), [this](auto original, void* block, std::size_t size) {
            // Old and new block may stand side by side for a moment.
            const std::int64_t old = Size(block);
            void* const moved = Counted(original(block, size));
            Count(moved ? -old : 0);
            return moved;
        }};
    ImportHook<"free", void(void*)> free_{TheDll(), [this](auto original, void* block) {
                                              Count(-Size(block));
                                              original(block);
                                          }};
    ImportHook<"CreateDIBSection", HBITMAP(HDC, const BITMAPINFO*, UINT, void**, HANDLE, DWORD)>
        createSection_{TheDll(), [this](auto original, HDC dc, const BITMAPINFO* info, UINT usage,
                                        void** bits, HANDLE file, DWORD offset) {
                           const HBITMAP bitmap = original(dc, info, usage, bits, file, offset);
                           const BITMAPINFOHEADER& header = info->bmiHeader;
                           if (bitmap)
                               Count(sections_[bitmap] = std::int64_t{4} * header.biWidth * header.biHeight);
                           return bitmap;
                       }};
    ImportHook<"DeleteObject", BOOL(HGDIOBJ)> deleteObject_{TheDll(), [this](auto original, HGDIOBJ object) {
                                                                const auto section =
                                                                    sections_.extract(object);
                                                                Count(section ? -section.mapped() : 0);
                                                                return original(object);
                                                            }};
};

} // namespace vantrel::tests
