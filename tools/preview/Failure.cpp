#include "tools/preview/Failure.h"

#include "tools/terminal/Console.h"

#include <utility>

namespace vantrel::tools {

Failure::Failure(std::wstring message, HRESULT result) : message_(std::move(message)), result_(result) {}

void Check(HRESULT result, std::wstring_view what) {
    if (result == S_OK)
        return;
    const std::wstring words = result == S_FALSE ? L"no value (S_FALSE)" : DescribeHresult(result);
    throw Failure(std::wstring(what) + L": " + words, result);
}

} // namespace vantrel::tools
