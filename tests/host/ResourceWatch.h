// Counts the resources that the library acquires and must release; can make any acquisition and any file read
// fail.
#pragma once

#include "tests/host/ImportHook.h"
#include "tests/host/TheDll.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace vantrel::tests {

// What the library allocates can be seen if it imports malloc. With a static C runtime, as Visual Studio's is
// here, it does not.
inline bool IsMemoryVisible() {
    return FindImport(TheDll(), "malloc") != nullptr;
}
inline constexpr char memoryNotVisible[] = "not measurable here: the library does not import malloc";

enum class Refuse { One, FromThereOn };

// Active during its lifetime, for one thread at a time. Counts what the library itself acquires: memory,
// BSTRs, GDI objects, icons, files, libraries, security descriptors, registry keys. Fails the running test if
// a key is closed twice or a bitmap is deleted while selected.
class ResourceWatch {
public:
    // Makes this acquisition fail, counted from 1, or it and all that follow.
    explicit ResourceWatch(unsigned number = 0, Refuse mode = Refuse::One) : number_(number), mode_(mode) {
        Allocating<"malloc", std::size_t>();
        Allocating<"calloc", std::size_t, std::size_t>();
        Hook<"realloc", void*, void*, std::size_t>([this](auto original, void* block, std::size_t size) {
            void* const moved = Refused("realloc") ? nullptr : original(block, size);
            if (moved)
                Forget(block);
            return Keep(moved, size);
        });
        Hook<"_aligned_malloc", void*, std::size_t, std::size_t>(
            [this](auto original, std::size_t size, std::size_t alignment) {
                return Keep(Refused("_aligned_malloc") ? nullptr : original(size, alignment), size);
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
        Hook<"ReadFile", BOOL, HANDLE, void*, DWORD, DWORD*, OVERLAPPED*>(
            [this](auto original, auto... rest) { return Refused("ReadFile") ? FALSE : original(rest...); });
        Taking<"LoadLibraryW", HMODULE, const wchar_t*>(nullptr);
        // Found at run time; it allocates local memory.
        Hook<"GetProcAddress", FARPROC, HMODULE, const char*>(
            [this](auto original, HMODULE module, const char* name) {
                const FARPROC found = original(module, name);
                if (std::strcmp(name, "ConvertStringSecurityDescriptorToSecurityDescriptorW") != 0)
                    return found;
                convert_ = reinterpret_cast<ConvertFn>(reinterpret_cast<void*>(found));
                converting_ = this;
                return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Convert));
            });
        Opening<"RegCreateKeyW", HKEY, const wchar_t*, HKEY*>();
        Opening<"RegOpenKeyExW", HKEY, const wchar_t*, DWORD, REGSAM, HKEY*>();
        Opening<"RegCreateKeyExW", HKEY, const wchar_t*, DWORD, wchar_t*, DWORD, REGSAM, SECURITY_ATTRIBUTES*,
                HKEY*, DWORD*>();
        Hook<"RegCloseKey", LSTATUS, HKEY>([this](auto original, HKEY key) {
            EXPECT_TRUE(live_.contains(key)) << "closed twice";
            Forget(key);
            return original(key);
        });
        Hook<"SelectObject", HGDIOBJ, HDC, HGDIOBJ>([this](auto original, HDC dc, HGDIOBJ object) {
            selected_[dc] = object;
            return original(dc, object);
        });
        Hook<"DeleteDC", BOOL, HDC>([this](auto original, HDC dc) {
            selected_.erase(dc);
            Forget(dc);
            return original(dc);
        });
        Hook<"DeleteObject", BOOL, HGDIOBJ>([this](auto original, HGDIOBJ object) {
            for (const auto& [dc, held] : selected_)
                EXPECT_NE(object, held) << "deleted while it is selected";
            Forget(object);
            return original(object);
        });
        Giving<"FreeLibrary", BOOL, HMODULE>();
        Giving<"LocalFree", HLOCAL, HLOCAL>();
        Giving<"free", void, void*>();
        Giving<"_aligned_free", void, void*>();
        Giving<"SysFreeString", void, BSTR>();
        Giving<"ReleaseDC", int, HWND, HDC>();
        Giving<"CloseHandle", BOOL, HANDLE>();
    }

    // The first function that was made to fail; empty if none was.
    const std::string& RefusedName() const { return refused_; }
    // What was acquired and not released.
    std::size_t Live() const { return live_.size(); }
    // The peak size of its heap blocks and DIB sections. What the system itself allocates during a call is
    // not included.
    std::size_t PeakBytes() const { return peakBytes_; }

private:
    template <FunctionName name, class Result, class... Arguments, class Replacement>
    void Hook(Replacement replacement) {
        hooks_.push_back(std::make_shared<ImportHook<name, Result(Arguments...)>>(TheDll(), replacement));
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
    // The block's size is the product of the arguments.
    template <FunctionName name, class... Sizes>
    void Allocating() {
        Hook<name, void*, Sizes...>([this](auto original, Sizes... sizes) {
            return Keep(Refused(name.text) ? nullptr : original(sizes...), (sizes * ...));
        });
    }
    // Counts the key that a function stores through its last argument of this type.
    template <FunctionName name, class... Arguments>
    void Opening() {
        Hook<name, LSTATUS, Arguments...>([this](auto original, Arguments... arguments) {
            const LSTATUS status = original(arguments...);
            if (status == ERROR_SUCCESS)
                Keep(*std::get<HKEY*>(std::tuple(arguments...)));
            return status;
        });
    }
    static BOOL WINAPI Convert(const wchar_t* text, DWORD revision, PSECURITY_DESCRIPTOR* descriptor,
                               ULONG* size) {
        if (converting_->Refused("LocalAlloc") || !convert_(text, revision, descriptor, size))
            return FALSE;
        converting_->Keep(*descriptor);
        return TRUE;
    }
    // The releasing functions take the resource as their last argument.
    template <FunctionName name, class Result, class... Arguments>
    void Giving() {
        Hook<name, Result, Arguments...>([this](auto original, Arguments... arguments) {
            Forget(std::get<sizeof...(Arguments) - 1>(std::tuple(arguments...)));
            return original(arguments...);
        });
    }

    bool Refused(const char* name) {
        ++takings_;
        if (number_ == 0 || takings_ < number_ || (mode_ == Refuse::One && takings_ > number_))
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
    // Resources from before the watch are not counted.
    void Forget(void* thing) {
        if (const auto known = live_.extract(thing))
            bytes_ -= known.mapped();
    }

    using ConvertFn = BOOL(WINAPI*)(const wchar_t*, DWORD, PSECURITY_DESCRIPTOR*, ULONG*);
    static inline ConvertFn convert_ = nullptr;
    static inline ResourceWatch* converting_ = nullptr;

    unsigned number_;
    Refuse mode_;
    unsigned takings_ = 0;
    std::string refused_{};
    std::map<void*, std::size_t> live_{}; // and their bytes
    std::map<HDC, HGDIOBJ> selected_{};
    std::size_t bytes_ = 0;
    std::size_t peakBytes_ = 0;
    std::vector<std::shared_ptr<void>> hooks_{}; // of many types
};

} // namespace vantrel::tests
