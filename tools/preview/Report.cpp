#include "tools/preview/Report.h"

#include "tools/terminal/Console.h"

#include <algorithm>
#include <array>
#include <cwchar>

namespace vantrel::tools {

namespace {

std::wstring Padded(std::wstring text, std::size_t columns) {
    text.resize(std::max(text.size() + 2, columns + 2), L' ');
    return text;
}

void PrintFailure(const FileReport& report) {
    if (!report.Ok())
        PrintError(L"zmi-preview: " + report.file.shown + L": " + report.Reason());
}

JsonObject ToJson(const HandlerResult& result) {
    JsonObject object;
    object.Add("handler", result.handler);
    object.Add("request", result.request);
    object.Add("ok", result.ok);
    object.Add(result.ok ? "result" : "error", result.text);
    if (!result.ok) {
        std::array<wchar_t, 12> code{};
        std::swprintf(code.data(), code.size(), L"0x%08X", static_cast<unsigned>(result.code));
        object.Add("hresult", code.data());
    }
    if (result.picture.width > 0) {
        object.Add("width", result.picture.width);
        object.Add("height", result.picture.height);
    }
    if (!result.png.empty())
        object.Add("png", result.png);
    return object;
}

} // namespace

bool FileReport::Ok() const {
    return !fault &&
           std::all_of(results.begin(), results.end(), [](const auto& result) { return result.ok; });
}

const HandlerResult* FileReport::Find(HandlerKind kind, std::wstring_view request) const {
    for (const HandlerResult& result : results)
        if (result.ok && result.handler == ClassOf(kind).name && result.request == request)
            return &result;
    return nullptr;
}

std::wstring FileReport::Reason() const {
    if (fault)
        return L"no picture: " + *fault;
    for (const HandlerResult& result : results)
        if (!result.ok)
            return result.handler + L" " + result.request + L": " + result.text;
    return {};
}

void PrintReports(const std::vector<FileReport>& reports) {
    constexpr std::size_t widestName = 40;
    std::size_t nameColumns = 0;
    std::size_t requestColumns = 0;
    for (const FileReport& report : reports) {
        nameColumns = std::max(nameColumns, std::min(report.file.shown.size(), widestName));
        for (const HandlerResult& result : report.results)
            requestColumns = std::max(requestColumns, result.request.size());
    }
    constexpr std::size_t handlerColumns = 10;
    for (const FileReport& report : reports) {
        for (const HandlerResult& result : report.results)
            PrintLine(Padded(report.file.shown, nameColumns) + Padded(result.handler, handlerColumns) +
                      Padded(result.request, requestColumns) + (result.ok ? L"" : L"FAILED  ") + result.text +
                      (result.png.empty() ? L"" : L" -> " + result.png));
        PrintFailure(report);
    }
}

void PrintJson(const std::vector<FileReport>& reports, JsonDocument& document) {
    document.BeginList("files");
    for (const FileReport& report : reports) {
        std::vector<JsonObject> results;
        for (const HandlerResult& result : report.results)
            results.push_back(ToJson(result));
        JsonObject file;
        file.Add("file", report.file.shown);
        file.Add("ok", report.Ok());
        if (!report.Ok())
            file.Add("reason", report.Reason());
        file.Add("results", results);
        document.Append(file);
        PrintFailure(report);
    }
}

} // namespace vantrel::tools
