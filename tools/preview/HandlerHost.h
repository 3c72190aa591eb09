// What every kind of host has in common: it asks one handler about one file and reports each answer.
#pragma once

#include "tools/preview/HandlerRegistry.h"
#include "tools/preview/InputFile.h"
#include "tools/preview/Picture.h"
#include "tools/terminal/Failure.h"

#include <functional>
#include <string>
#include <vector>

namespace vantrel::tools {

// The answer to one request. A picture that was handed out has pixels and a suffix for its PNG file's name.
struct HandlerResult {
    std::wstring handler;
    std::wstring request;
    bool ok = false;
    std::wstring text; // the value, or what went wrong
    HRESULT code = S_OK;
    Picture picture;
    std::wstring pngSuffix;
    std::wstring png; // where the picture was written, empty when it was not
};

class HandlerHost {
public:
    virtual ~HandlerHost() = default;

    // Appends one result per request; a request that fails is a result too.
    virtual void Ask(const InputFile& file, std::vector<HandlerResult>& results) = 0;

protected:
    HandlerHost(HandlerRegistry& registry, HandlerKind kind) : registry_(registry), kind_(kind) {}

    template <class Interface>
    Microsoft::WRL::ComPtr<Interface> Create(const InputFile& file) {
        return registry_.Create<Interface>(kind_, file.path.extension().wstring());
    }

    // Runs one request and turns a Failure into its result.
    void Attempt(std::vector<HandlerResult>& results, std::wstring request,
                 const std::function<void(HandlerResult&)>& ask) const {
        HandlerResult& result = results.emplace_back();
        result.handler = ClassOf(kind_).name;
        result.request = std::move(request);
        try {
            ask(result);
            result.ok = true;
        } catch (const Failure& failure) {
            result.text = failure.Message();
            result.code = failure.Result();
        }
    }

private:
    HandlerRegistry& registry_;
    HandlerKind kind_;
};

} // namespace vantrel::tools
