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
        Allocating<"malloc", void*(std::size_t)>();
        Allocating<"calloc", void*(std::size_t, std::size_t)>();
        Hook<"realloc", decltype(realloc)>([this](auto original, void* block, std::size_t size) {
            void* const moved = Refused("realloc") ? nullptr : original(block, size);
            if (moved)
                Forget(block);
            return Keep(moved, size);
        });
        Hook<"_aligned_malloc", void*(std::size_t, std::size_t)>(
            [this](auto original, std::size_t size, std::size_t alignment) {
                return Keep(Refused("_aligned_malloc") ? nullptr : original(size, alignment), size);
            });
        Taking<"SysAllocString", decltype(SysAllocString)>(nullptr);
        Hook<"CreateDIBSection", decltype(CreateDIBSection)>(
            [this](auto original, HDC dc, const BITMAPINFO* info, auto... rest) {
                const auto width = static_cast<std::size_t>(info->bmiHeader.biWidth);
                const auto height = static_cast<std::size_t>(info->bmiHeader.biHeight);
                return Keep(Refused("CreateDIBSection") ? nullptr : original(dc, info, rest...),
                            4 * width * height);
            });
        Taking<"CreateCompatibleDC", decltype(CreateCompatibleDC)>(nullptr);
        Taking<"CreateSolidBrush", decltype(CreateSolidBrush)>(nullptr);
        Taking<"CreateIconIndirect", decltype(CreateIconIndirect)>(nullptr);
        Taking<"GetDC", decltype(GetDC)>(nullptr);
        Taking<"CreateFileW", decltype(CreateFileW)>(INVALID_HANDLE_VALUE);
        Hook<"ReadFile", decltype(ReadFile)>(
            [this](auto original, auto... rest) { return Refused("ReadFile") ? FALSE : original(rest...); });
        Taking<"LoadLibraryW", decltype(LoadLibraryW)>(nullptr);
        // Found at run time; it allocates local memory.
        Hook<"GetProcAddress", decltype(GetProcAddress)>(
            [this](auto original, HMODULE module, const char* name) {
                const FARPROC found = original(module, name);
                if (std::strcmp(name, "ConvertStringSecurityDescriptorToSecurityDescriptorW") != 0)
                    return found;
                convert_ = reinterpret_cast<ConvertFn>(reinterpret_cast<void*>(found));
                converting_ = this;
                return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Convert));
            });
        Opening<"RegCreateKeyW", decltype(RegCreateKeyW)>();
        Opening<"RegOpenKeyExW", decltype(RegOpenKeyExW)>();
        Opening<"RegCreateKeyExW", decltype(RegCreateKeyExW)>();
        Hook<"RegCloseKey", decltype(RegCloseKey)>([this](auto original, HKEY key) {
            EXPECT_TRUE(live_.contains(key)) << "closed twice";
            Forget(key);
            return original(key);
        });
        Hook<"SelectObject", decltype(SelectObject)>([this](auto original, HDC dc, HGDIOBJ object) {
            selected_[dc] = object;
            return original(dc, object);
        });
        Hook<"DeleteDC", decltype(DeleteDC)>([this](auto original, HDC dc) {
            selected_.erase(dc);
            Forget(dc);
            return original(dc);
        });
        Hook<"DeleteObject", decltype(DeleteObject)>([this](auto original, HGDIOBJ object) {
            for (const auto& [dc, held] : selected_)
                EXPECT_NE(object, held) << "deleted while it is selected";
            Forget(object);
            return original(object);
        });
        Giving<"FreeLibrary", decltype(FreeLibrary)>();
        Giving<"LocalFree", decltype(LocalFree)>();
        Giving<"free", decltype(free)>();
        Giving<"_aligned_free", decltype(_aligned_free)>();
        Giving<"SysFreeString", decltype(SysFreeString)>();
        Giving<"ReleaseDC", decltype(ReleaseDC)>();
        Giving<"CloseHandle", decltype(CloseHandle)>();
    }

    // The first function that was made to fail; empty if none was.
    const std::string& RefusedName() const { return refused_; }
    // What was acquired and not released.
    std::size_t Live() const { return live_.size(); }
    // The peak size of its heap blocks and DIB sections. What the system itself allocates during a call is
    // not included.
    std::size_t PeakBytes() const { return peakBytes_; }

private:
    template <FunctionName name, class Signature, class Replacement>
    void Hook(Replacement replacement) {
        hooks_.push_back(std::make_shared<ImportHook<name, Signature>>(TheDll(), replacement));
    }
    template <FunctionName name, class Signature, class Refusal>
    void Taking(Refusal refusal) {
        Hook<name, Signature>([=, this](auto original, auto... arguments) {
            using Result = decltype(original(arguments...));
            const Result taken = Refused(name.text) ? Result(refusal) : original(arguments...);
            return taken == refusal ? taken : Keep(taken);
        });
    }
    // The block's size is the product of the arguments.
    template <FunctionName name, class Signature>
    void Allocating() {
        Hook<name, Signature>([this](auto original, auto... sizes) {
            return Keep(Refused(name.text) ? nullptr : original(sizes...), (sizes * ...));
        });
    }
    // Counts the key that a function stores through its last argument of this type.
    template <FunctionName name, class Signature>
    void Opening() {
        Hook<name, Signature>([this](auto original, auto... arguments) {
            const LSTATUS status = original(arguments...);
            if (status == ERROR_SUCCESS)
                this->Keep(*std::get<HKEY*>(std::tuple(arguments...)));
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
    template <FunctionName name, class Signature>
    void Giving() {
        Hook<name, Signature>([this](auto original, auto... arguments) {
            Forget(std::get<sizeof...(arguments) - 1>(std::tuple(arguments...)));
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
