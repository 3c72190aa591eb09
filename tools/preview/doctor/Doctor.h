// The answer to "why do I see no thumbnails?": everything on this machine that could be the reason.
#pragma once

#include "tools/preview/InputFile.h"
#include "tools/terminal/JsonDocument.h"

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vantrel::tools {

enum class Health { Ok, Warn, Fail };

struct Finding {
    Health health;
    std::wstring text; // one sentence, with the cure where there is something to cure
};

class Doctor {
public:
    // With a DLL given, it is the one that ought to be registered.
    explicit Doctor(std::optional<std::filesystem::path> dll);

    std::vector<Finding> Examine(const std::vector<InputFile>& files);

private:
    // The five classes' server paths in the registry, each one once.
    static std::set<std::wstring> RegisteredServers();
    void Add(Health health, std::wstring text, const std::wstring& cure = {});
    void CheckRegistration();
    void CheckServer();
    void CheckClasses(const std::wstring& server);
    void CheckOtherHandlers();
    void CheckSettings();
    void CheckFile(const InputFile& file);

    std::optional<std::filesystem::path> dll_;
    std::wstring registerAgain_; // the cure for most of what can be wrong
    std::vector<Finding> findings_;
};

// Prints one line per finding, or one item of the JSON document. False when something failed.
bool PrintFindings(const std::vector<Finding>& findings, JsonDocument* json);

} // namespace vantrel::tools
