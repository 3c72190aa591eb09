#include "tools/preview/FileReport.h"

#include "tools/terminal/Console.h"
#include "tools/terminal/NumberText.h"

#include <algorithm>
#include <cwchar>

namespace vantrel::tools {

namespace {

std::wstring Padded(std::wstring text, std::size_t columns) {
    text.resize(std::max(text.size(), columns) + 2, L' ');
    return text;
}

JsonObject ToJson(const HandlerResult& result) {
    JsonObject object;
    object.Add("handler", ClassOf(result.handler).name);
    object.Add("request", result.request);
    object.Add("ok", result.ok);
    if (!result.ok) {
        object.Add("error", result.text);
        object.Add("hresult", L"0x" + Hexadecimal(static_cast<std::uint32_t>(result.code), 8));
    } else if (result.number) {
        object.Add("result", *result.number);
    } else {
        object.Add("result", result.isoTime.empty() ? result.text : result.isoTime);
    }
    // Of the picture, or as the value says.
    unsigned width = result.picture.width;
    unsigned height = result.picture.height;
    if (width > 0 || (result.request == L"dimensions" &&
                      std::swscanf(result.text.c_str(), L"%u x %u", &width, &height) == 2)) {
        object.Add("width", width);
        object.Add("height", height);
    }
    if (!result.png.empty())
        object.Add("png", result.png);
    return object;
}

} // namespace

bool FileReport::Ok() const {
    return !fault && std::ranges::all_of(results, &HandlerResult::ok);
}

const HandlerResult* FileReport::Find(HandlerKind kind, std::wstring_view request) const {
    for (const HandlerResult& result : results)
        if (result.ok && result.handler == kind && result.request == request)
            return &result;
    return nullptr;
}

std::wstring FileReport::Reason() const {
    if (fault)
        return *fault;
    for (const HandlerResult& result : results)
        if (!result.ok)
            return std::wstring(ClassOf(result.handler).name) + L" " + result.request + L": " + result.text +
                   advice;
    return {};
}

void PrintResults(const FileReport& report, std::size_t nameColumns) {
    constexpr std::size_t handlerColumns = 10;
    constexpr std::size_t requestColumns = 10;
    for (const HandlerResult& result : report.results)
        PrintLine(Padded(Visible(report.file.shown), nameColumns) +
                  Padded(ClassOf(result.handler).name, handlerColumns) +
                  Padded(result.request, requestColumns) + (result.ok ? L"" : L"FAILED  ") + result.text +
                  (result.png.empty() ? L"" : L" -> " + result.png));
}

JsonObject ToJson(const FileReport& report) {
    std::vector<JsonObject> results;
    for (const HandlerResult& result : report.results)
        results.push_back(ToJson(result));
    JsonObject file;
    file.Add("file", report.file.shown);
    file.Add("ok", report.Ok());
    if (!report.Ok())
        file.Add("reason", report.Reason());
    file.Add("results", results);
    return file;
}

} // namespace vantrel::tools
