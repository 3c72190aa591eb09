// What the library takes from the system and must give back, counted; any taking of it can be refused.
#pragma once

#include "tests/door/ImportHook.h"
#include "tests/door/TheDll.h"

#include <memory>
#include <set>
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
            return Keep(Refused("malloc", size) ? nullptr : original(size));
        });
        Hook<"calloc", void*, std::size_t, std::size_t>(
            [this](auto original, std::size_t n, std::size_t size) {
                return Keep(Refused("calloc", n * size) ? nullptr : original(n, size));
            });
        Hook<"realloc", void*, void*, std::size_t>([this](auto original, void* block, std::size_t size) {
            void* const moved = Refused("realloc", size) ? nullptr : original(block, size);
            if (moved)
                Forget(block);
            return Keep(moved);
        });
        Taking<"SysAllocString", BSTR, const OLECHAR*>(nullptr);
        Taking<"CreateDIBSection", HBITMAP, HDC, const BITMAPINFO*, UINT, void**, HANDLE, DWORD>(nullptr);
        Taking<"CreateCompatibleDC", HDC, HDC>(nullptr);
        Taking<"CreateSolidBrush", HBRUSH, COLORREF>(nullptr);
        Taking<"CreateIconIndirect", HICON, ICONINFO*>(nullptr);
        Taking<"GetDC", HDC, HWND>(nullptr);
        Taking<"CreateFileW", HANDLE, const wchar_t*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD,
               HANDLE>(INVALID_HANDLE_VALUE);
        Giving<"free", void, void*>();
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
    Thing Keep(Thing thing) {
        if (thing)
            live_.insert(thing);
        return thing;
    }
    // Things from before the watch began go uncounted.
    void Forget(void* thing) { live_.erase(thing); }

    unsigned number_;
    Refuse mode_;
    unsigned takings_ = 0;
    std::string refused_{};
    std::set<void*> live_{};
    std::vector<std::unique_ptr<ImportPatch>> hooks_{};
};

} // namespace vantrel::tests
