// Runs the tools next to the test program as users do, in a scratch folder.
#pragma once

#include "tests/builder/ZmiBuilder.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <utility>

namespace vantrel::tests {

using Arguments = std::vector<std::wstring>;

inline Arguments operator+(Arguments first, const Arguments& more) {
    first.insert(first.end(), more.begin(), more.end());
    return first;
}

inline bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

struct ToolRun {
    DWORD exitCode = 0;
    std::string out;
    std::string err;

    // Fail the running test unless the program exited with this code, and printed all of these words on
    // stderr or stdout.
    template <class... Words>
    const ToolRun& Ended(DWORD expected, const Words&... words) const {
        EXPECT_EQ(expected, exitCode) << out << err;
        ExpectParts(err, {words...});
        return *this;
    }
    template <class... Words>
    const ToolRun& Told(const Words&... words) const {
        ExpectParts(out, {words...});
        return *this;
    }

private:
    static void ExpectParts(const std::string& text, const std::vector<std::string>& parts) {
        for (const std::string& part : parts)
            EXPECT_TRUE(Contains(text, part)) << part << "\n not in \n" << text;
    }
};

class ToolTest : public testing::Test {
protected:
    ToolTest() {
        std::filesystem::create_directories(folder_);
        // Wine creates a desktop on demand, which takes a second, and drops it with its last user: keep it.
        GetDesktopWindow();
    }
    // A tool's console host outlives it by some milliseconds, and has this as its current folder.
    ~ToolTest() override {
        std::error_code error;
        for (int i = 0; i < 100 && (std::filesystem::remove_all(folder_, error), error); ++i)
            Sleep(20);
        EXPECT_FALSE(error) << error.message();
    }

    static std::wstring Beside(const wchar_t* name) {
        wchar_t path[MAX_PATH];
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        return std::filesystem::path(path).replace_filename(name).wstring();
    }

    // Runs a program until it exits; whileItRuns is called with its process identifier.
    ToolRun Run(const std::wstring& program, const Arguments& arguments, DWORD flags = 0,
                const std::function<void(DWORD)>& whileItRuns = {}) const {
        std::wstring command = L'"' + program + L'"';
        for (const std::wstring& argument : arguments)
            command += L" \"" + argument + L'"';
        HANDLE reading[2];
        HANDLE writing[2];
        for (int i = 0; i < 2; ++i) {
            CreatePipe(&reading[i], &writing[i], nullptr, 1 << 20);
            SetHandleInformation(writing[i], HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
        }
        if (isReaderGone_)
            CloseHandle(std::exchange(reading[0], nullptr));
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = writing[0];
        startup.hStdError = writing[1];
        PROCESS_INFORMATION process{};
        EXPECT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, flags, nullptr,
                                   folder_.c_str(), &startup, &process))
            << GetLastError();
        CloseHandle(writing[0]);
        CloseHandle(writing[1]);
        if (whileItRuns)
            whileItRuns(process.dwProcessId);
        // One after the other: stderr's output fits into its pipe.
        ToolRun run;
        for (const auto& [pipe, text] : {std::pair(reading[0], &run.out), std::pair(reading[1], &run.err)}) {
            char buffer[4096];
            for (DWORD count = 0; ReadFile(pipe, buffer, sizeof buffer, &count, nullptr) && count > 0;)
                text->append(buffer, count);
        }
        WaitForSingleObject(process.hProcess, INFINITE);
        GetExitCodeProcess(process.hProcess, &run.exitCode);
        for (const HANDLE handle : {reading[0], reading[1], process.hThread, process.hProcess})
            CloseHandle(handle);
        return run;
    }

    ToolRun Pack(const Arguments& arguments) const { return Run(Beside(L"zmi-pack.exe"), arguments); }
    ToolRun Unpack(const Arguments& arguments) const { return Run(Beside(L"zmi-unpack.exe"), arguments); }

    // With the library next to the programs, registered or not.
    ToolRun Preview(const Arguments& arguments) const {
        const Arguments library = {L"--dll", Beside(L"Vantrel64.dll")};
        return Run(Beside(L"zmi-preview.exe"), library + arguments);
    }

    void Write(const std::wstring& name, const Bytes& bytes) const {
        std::ofstream(folder_ / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }

    void WriteText(const std::wstring& name, const std::string& text) const {
        Write(name, Bytes(text.begin(), text.end()));
    }

    // In a form that allows more than 260 characters.
    std::filesystem::path LongPath(const std::wstring& name) const {
        return LR"(\\?\)" + (folder_ / name).wstring();
    }

    // Empty if there is no such file.
    Bytes Read(const std::wstring& name) const {
        std::ifstream file(LongPath(name), std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(file), {});
    }

    auto FileCount(const std::filesystem::path& below = {}) const {
        return std::distance(std::filesystem::directory_iterator(folder_ / below), {});
    }

    bool isReaderGone_ = false; // nobody reads the tool's stdout

    // No single-byte code page has all of these characters.
    const std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / (L"tool ä図 " + std::to_wstring(GetCurrentProcessId()));
};

} // namespace vantrel::tests
