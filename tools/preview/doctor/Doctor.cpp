#include "tools/preview/doctor/Doctor.h"

#include "tools/preview/doctor/Diagnosis.h"
#include "tools/terminal/Console.h"

#include <algorithm>
#include <array>

namespace vantrel::tools {

bool RunDoctor(const std::optional<std::filesystem::path>& library,
               const std::vector<std::wstring>& arguments, JsonDocument* json) {
    const std::vector<Finding> findings = Diagnose(GatherFacts(library, arguments));
    Health worst = Health::Ok;
    if (json)
        json->BeginList("checks");
    for (const auto& [health, text, fix] : findings) {
        worst = std::max(worst, health);
        constexpr std::array<const wchar_t*, 3> names = {L"ok", L"warn", L"fail"};
        const std::wstring name = names[static_cast<std::size_t>(health)];
        if (json) {
            JsonObject check;
            check.Add("health", name);
            check.Add("text", text);
            if (!fix.empty())
                check.Add("fix", fix);
            json->Append(check);
            continue;
        }
        constexpr std::size_t column = 7;
        std::wstring tag = L'[' + name + L']';
        tag.resize(column, L' ');
        PrintLine(tag + text);
        if (!fix.empty())
            PrintLine(std::wstring(column, L' ') + L"Fix: " + fix);
    }
    if (worst == Health::Ok && !json)
        PrintLine(L"Nothing is wrong here. If Explorer still shows old pictures, clear its thumbnail cache "
                  L"(Disk Clean-up, Thumbnails).");
    return worst != Health::Fail;
}

} // namespace vantrel::tools
