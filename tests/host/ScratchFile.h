// A temporary file that nobody may keep open.
#pragma once

#include "tests/builder/ZmiBuilder.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <string>

namespace vantrel::tests {

class ScratchFile {
public:
    explicit ScratchFile(const Bytes& bytes, const wchar_t* extension = L".zmi") {
        static std::atomic<unsigned> number = 0;
        wchar_t folder[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        path_ = std::wstring(folder) + L"door-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                std::to_wstring(++number) + extension;
        std::ofstream(path_.c_str(), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { EXPECT_TRUE(DeleteFileW(Path())) << "something keeps the file open"; }

    const wchar_t* Path() const { return path_.c_str(); }

private:
    std::wstring path_;
};

} // namespace vantrel::tests
