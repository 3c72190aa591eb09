#include "support/TextBuffer.h"

#include <windows.h>

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <cwchar>
#include <limits>

namespace vantrel {

namespace {

constexpr std::size_t standardCapacity = 260;
constexpr std::size_t formatLimit = 0x300000;

} // namespace

TextBuffer::TextBuffer() {
    FallBack();
}

bool TextBuffer::Reserve(std::size_t capacity) {
    if (capacity <= capacity_)
        return true;
    if (capacity > std::numeric_limits<std::size_t>::max() / sizeof(wchar_t))
        return FallBack();
    auto* const block = static_cast<wchar_t*>(std::realloc(characters_.get(), capacity * sizeof(wchar_t)));
    if (!block)
        return FallBack();
    static_cast<void>(characters_.release()); // now owned by realloc
    characters_.reset(block);
    std::fill(block + capacity_, block + capacity, L'\0');
    capacity_ = capacity;
    length_ = std::max<std::size_t>(length_, 1);
    return true;
}

bool TextBuffer::FallBack() {
    characters_.reset(); // first, as it may be what takes up the memory
    characters_.reset(static_cast<wchar_t*>(std::calloc(standardCapacity, sizeof(wchar_t))));
    capacity_ = characters_ ? standardCapacity : 0;
    length_ = characters_ ? 1 : 0;
    return false;
}

void TextBuffer::MeasureLength() {
    length_ = std::wcslen(characters_.get()) + 1;
}

bool TextBuffer::AssignWide(const wchar_t* text, std::size_t count) {
    if (!text)
        count = 0;
    if (count == std::numeric_limits<std::size_t>::max())
        return FallBack();
    if (!Reserve(count + 1))
        return false;
    if (count > 0)
        std::memcpy(characters_.get(), text, count * sizeof(wchar_t));
    characters_.get()[count] = L'\0';
    MeasureLength();
    return true;
}

bool TextBuffer::AssignWide(const wchar_t* text) {
    return AssignWide(text, text ? std::wcslen(text) : 0);
}

bool TextBuffer::AssignNarrow(const char* bytes, std::size_t count, Widening widening) {
    if (count >= static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return FallBack();
    if (!Reserve(count + 1))
        return false;
    std::size_t produced = count;
    if (widening == Widening::ByValue) {
        std::transform(bytes, bytes + count, characters_.get(),
                       [](char byte) { return static_cast<wchar_t>(static_cast<unsigned char>(byte)); });
    } else if (count > 0) {
        const int room =
            static_cast<int>(std::min<std::size_t>(capacity_ - 1, std::numeric_limits<int>::max()));
        produced = static_cast<std::size_t>(
            MultiByteToWideChar(CP_ACP, 0, bytes, static_cast<int>(count), characters_.get(), room));
        if (produced == 0)
            return FallBack();
    }
    characters_.get()[produced] = L'\0';
    MeasureLength();
    return true;
}

bool TextBuffer::AssignNarrow(const char* bytes) {
    return AssignNarrow(bytes, std::strlen(bytes), Widening::AnsiCodePage);
}

bool TextBuffer::Format(const wchar_t* format, ...) {
    if (!Reserve(standardCapacity))
        return false;
    for (;;) {
        va_list arguments;
        va_start(arguments, format);
        // The function does not terminate a text that fits exactly.
        characters_.get()[capacity_ - 1] = L'\0';
        const int written = _vsnwprintf(characters_.get(), capacity_ - 1, format, arguments);
        va_end(arguments);
        if (written >= 0)
            break;
        if (capacity_ >= formatLimit)
            return FallBack();
        if (!Reserve(capacity_ + standardCapacity))
            return false;
    }
    MeasureLength();
    return true;
}

} // namespace vantrel
