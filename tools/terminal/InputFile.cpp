#include "tools/terminal/InputFile.h"

#include "tools/terminal/Failure.h"
#include "tools/terminal/FileName.h"
#include "tools/terminal/FileSearch.h"
#include "tools/terminal/LongPath.h"

namespace vantrel::tools {

std::vector<InputFile> FindInputFiles(const std::vector<std::wstring>& arguments) {
    std::vector<InputFile> files;
    for (const std::wstring& argument : arguments) {
        try {
            FileSearch found = FindFiles(argument);
            if (found.isFolder)
                std::erase_if(found.files, [](const auto& file) { return !HasExtension(file, L".zmi"); });
            for (const std::filesystem::path& file : found.files)
                files.push_back({file.wstring(), LongPath(file)});
            if (found.files.empty())
                files.push_back({argument, LongPath(argument),
                                 found.isFolder ? L"the folder contains no .zmi files" : L"file not found"});
        } catch (const UsageError&) {
            throw;
        } catch (const Failure& failure) {
            files.push_back({argument, LongPath(argument), DescribeHresult(failure.Result())});
        }
    }
    return files;
}

} // namespace vantrel::tools
