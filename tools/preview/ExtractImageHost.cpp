#include "tools/preview/ExtractImageHost.h"

#include "tools/terminal/ComApartment.h"

#include <shlobj.h>

#include <array>
#include <cwchar>
#include <thread>

namespace vantrel::tools {

using Microsoft::WRL::ComPtr;

namespace {

// Not square, so that the box around the picture shows.
constexpr SIZE box = {160, 120};

// As the old hosts did it: the bare pointer goes to the second thread, and only one thread uses the object at
// a time. Marshalling it would send Extract back to the thread that wants to be spared.
HRESULT ExtractOnSecondThread(IExtractImage& extractor, HBITMAP& bitmap) {
    HRESULT result = E_UNEXPECTED;
    std::thread([&] {
        const ComApartment apartment(COINIT_APARTMENTTHREADED);
        result = extractor.Extract(&bitmap);
    }).join();
    return result;
}

std::wstring InWords(const FILETIME& time) {
    SYSTEMTIME parts{};
    FileTimeToSystemTime(&time, &parts);
    std::array<wchar_t, 40> text{};
    std::swprintf(text.data(), text.size(), L"%04u-%02u-%02u %02u:%02u:%02u UTC", parts.wYear, parts.wMonth,
                  parts.wDay, parts.wHour, parts.wMinute, parts.wSecond);
    return text.data();
}

} // namespace

void ExtractImageHost::Ask(const InputFile& file, std::vector<HandlerResult>& results) {
    ComPtr<IExtractImage2> extractor;
    const std::wstring size = std::to_wstring(box.cx) + L" x " + std::to_wstring(box.cy);
    Attempt(results, size, [&](HandlerResult& result) {
        extractor = Create<IExtractImage2>(file);
        ComPtr<IPersistFile> persist;
        Check(extractor.As(&persist), L"IPersistFile");
        Check(persist->Load(file.path.c_str(), STGM_READ), L"Load");

        std::array<wchar_t, MAX_PATH> location{};
        DWORD priority = 0;
        DWORD flags = IEIFLAG_ASYNC | IEIFLAG_SCREEN | IEIFLAG_ASPECT;
        const HRESULT located = extractor->GetLocation(location.data(), static_cast<DWORD>(location.size()),
                                                       &priority, &box, 32, &flags);
        HBITMAP bitmap = nullptr;
        if (located == E_PENDING) {
            Check(ExtractOnSecondThread(*extractor.Get(), bitmap), L"Extract on a second thread");
        } else {
            Check(located, L"GetLocation");
            Check(extractor->Extract(&bitmap), L"Extract");
        }
        result.picture = TakePicture(bitmap);
        result.text = result.picture.Dimensions();
        if (located == E_PENDING)
            result.text += L", from a second thread";
        result.pngSuffix = L"extract";
    });
    if (!extractor)
        return;
    Attempt(results, L"date", [&](HandlerResult& result) {
        FILETIME time{};
        Check(extractor->GetDateStamp(&time), L"GetDateStamp");
        result.text = InWords(time);
    });
}

} // namespace vantrel::tools
