// A growable, always terminated UTF-16 string.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace vantrel {

// Running out of memory never throws: the text becomes empty, or loses its storage if even that fails, and
// the operation returns false. Counts are in code units.
class TextBuffer {
public:
    // Empty, with the standard capacity.
    TextBuffer();
    TextBuffer(const TextBuffer&) = delete;
    TextBuffer& operator=(const TextBuffer&) = delete;

    // Null when there is no storage.
    const wchar_t* Buffer() const { return characters_.get(); }
    // Both count the terminator; 0 without storage.
    std::size_t Capacity() const { return capacity_; }
    std::size_t Length() const { return length_; }

    // A null text gives the empty text.
    bool AssignWide(const wchar_t* text, std::size_t count);
    bool AssignWide(const wchar_t* text);

    enum class Widening {
        AnsiCodePage = 0, // by the system's ANSI code page
        ByValue = 1,      // each byte becomes the code unit with the same value
    };
    // A failed conversion leaves the text empty.
    bool AssignNarrow(const char* bytes, std::size_t count, Widening widening);
    // Up to the first zero byte, by the ANSI code page.
    bool AssignNarrow(const char* bytes);

    // Follows _vsnwprintf. Texts longer than 3,145,728 code units are refused.
    bool Format(const wchar_t* format, ...);

private:
    struct FreeBlock {
        void operator()(wchar_t* block) const noexcept { std::free(block); }
    };

    // Keeps the text. If out of memory, falls back to the empty text.
    bool Reserve(std::size_t capacity);
    // Always false, so that failing operations can return it.
    bool FallBack();
    void MeasureLength();

    std::unique_ptr<wchar_t, FreeBlock> characters_;
    std::size_t capacity_ = 0;
    std::size_t length_ = 0;
};

} // namespace vantrel
