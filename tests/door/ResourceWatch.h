// What the library takes from the system and must give back, counted; any taking of it can be refused.
#pragma once

#include "tests/door/ImportHook.h"
#include "tests/door/TheDll.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace vantrel::tests {

enum class Refuse {
    One,
    // From that one on everything but small memory: a full heap, too, still has room for the runtime's own
    // exception objects.
    AllLarge,
};

// While it lives, on one thread. Counts what the library itself calls: memory, BSTRs, GDI objects, icons,
// files.
class ResourceWatch {
public:
    // Refuses the taking of that number, counted from 1.
    explicit ResourceWatch(unsigned number = 0, Refuse mode = Refuse::One) : number_(number), mode_(mode) {
        Hook<"malloc", void*, std::size_t>([this](auto original, std::size_t size) {
            return Keep(Refused("malloc", size) ? nullptr : original(size), size);
        });
        Hook<"calloc", void*, std::size_t, std::size_t>(
            [this](auto original, std::size_t n, std::size_t size) {
                return Keep(Refused("calloc", n * size) ? nullptr : original(n, size), n * size);
            });
        Hook<"realloc", void*, void*, std::size_t>([this](auto original, void* block, std::size_t size) {
            void* const moved = Refused("realloc", size) ? nullptr : original(block, size);
            if (moved)
                Forget(block);
            return Keep(moved, size);
        });
        Hook<"_aligned_malloc", void*, std::size_t, std::size_t>(
            [this](auto original, std::size_t size, std::size_t alignment) {
                return Keep(Refused("_aligned_malloc", size) ? nullptr : original(size, alignment), size);
            });
        Taking<"SysAllocString", BSTR, const OLECHAR*>(nullptr);
        Hook<"CreateDIBSection", HBITMAP, HDC, const BITMAPINFO*, UINT, void**, HANDLE, DWORD>(
            [this](auto original, HDC dc, const BITMAPINFO* info, auto... rest) {
                const auto width = static_cast<std::size_t>(info->bmiHeader.biWidth);
                const auto height = static_cast<std::size_t>(info->bmiHeader.biHeight);
                return Keep(Refused("CreateDIBSection") ? nullptr : original(dc, info, rest...),
                            4 * width * height);
            });
        Taking<"CreateCompatibleDC", HDC, HDC>(nullptr);
        Taking<"CreateSolidBrush", HBRUSH, COLORREF>(nullptr);
        Taking<"CreateIconIndirect", HICON, ICONINFO*>(nullptr);
        Taking<"GetDC", HDC, HWND>(nullptr);
        Taking<"CreateFileW", HANDLE, const wchar_t*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD,
               HANDLE>(INVALID_HANDLE_VALUE);
        Giving<"free", void, void*>();
        Giving<"_aligned_free", void, void*>();
        Giving<"SysFreeString", void, BSTR>();
        Giving<"DeleteObject", BOOL, HGDIOBJ>();
        Giving<"DeleteDC", BOOL, HDC>();
        Giving<"ReleaseDC", int, HWND, HDC>();
        Giving<"CloseHandle", BOOL, HANDLE>();
    }

    // The function that was refused first; empty when nothing was.
    const std::string& RefusedName() const { return refused_; }
    // What has been taken and not been given back.
    std::size_t Live() const { return live_.size(); }
    // The most bytes that its heap blocks and DIB sections had at one time. What the system takes on its own
    // during a call is not in it.
    std::size_t PeakBytes() const { return peakBytes_; }

private:
    static constexpr std::size_t largeBytes = 512;

    template <FunctionName name, class Result, class... Arguments, class Replacement>
    void Hook(Replacement replacement) {
        hooks_.push_back(std::make_unique<ImportHook<name, Result(Arguments...)>>(TheDll(), replacement));
    }
    template <FunctionName name, class Result, class... Arguments>
    void Taking(Result refusal) {
        Hook<name, Result, Arguments...>([=, this](auto original, Arguments... arguments) {
            if (Refused(name.text))
                return refusal;
            const Result taken = original(arguments...);
            return taken == refusal ? taken : Keep(taken);
        });
    }
    // The functions that give back name the thing last.
    template <FunctionName name, class Result, class... Arguments>
    void Giving() {
        Hook<name, Result, Arguments...>([this](auto original, Arguments... arguments) {
            Forget(std::get<sizeof...(Arguments) - 1>(std::tuple(arguments...)));
            return original(arguments...);
        });
    }

    bool Refused(const char* name, std::size_t bytes = largeBytes) {
        ++takings_;
        const bool due =
            mode_ == Refuse::One ? takings_ == number_ : takings_ >= number_ && bytes >= largeBytes;
        if (number_ == 0 || !due)
            return false;
        if (refused_.empty())
            refused_ = name;
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return true;
    }
    template <class Thing>
    Thing Keep(Thing thing, std::size_t bytes = 0) {
        if (thing) {
            live_[thing] = bytes;
            bytes_ += bytes;
            peakBytes_ = std::max(peakBytes_, bytes_);
        }
        return thing;
    }
    // Things from before the watch began go uncounted.
    void Forget(void* thing) {
        if (const auto known = live_.extract(thing))
            bytes_ -= known.mapped();
    }

    unsigned number_;
    Refuse mode_;
    unsigned takings_ = 0;
    std::string refused_{};
    std::map<void*, std::size_t> live_{}; // and their bytes
    std::size_t bytes_ = 0;
    std::size_t peakBytes_ = 0;
    std::vector<std::unique_ptr<ImportPatch>> hooks_{};
};

} // namespace vantrel::tests
