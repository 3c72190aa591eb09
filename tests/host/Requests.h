// The requests that hosts make of each handler, with comparable answers.
#pragma once

#include "support/IColumnProvider.h"
#include "tests/host/Picture.h"
#include "tests/host/TheDll.h"

#include <propsys.h>
#include <shlguid.h>
#include <shlobj.h>
#include <thumbcache.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace vantrel::tests {

inline constexpr GUID imageProperties = {
    0x6444048F, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
inline constexpr PROPERTYKEY titleKey = {
    {0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}}, 2};
inline constexpr PROPERTYKEY dimensionsKey = {imageProperties, 13};
inline constexpr PROPERTYKEY bitDepthKey = {imageProperties, 7};

// The answer: everything that was returned, read and freed.
struct Answer {
    HRESULT result = E_UNEXPECTED;
    std::vector<Picture> pictures{}; // a bitmap, or icons in the order large, small
    std::wstring text{};             // a value with its type: "bstr:640 x 480", "bstr null", "i4:16"

    bool operator==(const Answer&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Answer& answer) {
        out << "result " << std::hex << answer.result << std::dec;
        for (const Picture& picture : answer.pictures)
            out << ", " << picture.width << " x " << picture.height;
        return out << ' ' << testing::PrintToString(answer.text);
    }
};

// Each fails the running test if a failed call has written to an output.
Answer AskThumbnail(IThumbnailProvider& provider, UINT edge);
Answer AskImage(IExtractImage2& handler);
Answer AskImage(IExtractImage2& handler, SIZE size); // GetLocation, then Extract
Answer AskIcons(IExtractIconW& handler, UINT largeSize, UINT smallSize);
Answer AskValue(IPropertyStore& store, const PROPERTYKEY& key);
Answer AskColumn(IColumnProvider& provider, const wchar_t* path, const wchar_t* extension = L".zmi",
                 DWORD attributes = FILE_ATTRIBUTE_NORMAL, const SHCOLUMNID& column = dimensionsKey);

// The icon's colours with their alpha; no pixel is masked out.
Picture ReadIcon(HICON icon);

// Objects initialised with their file.
ComPtr<IThumbnailProvider> ThumbnailProviderOf(IStream& stream, HMODULE module = TheDll());
ComPtr<IPropertyStore> PropertyStoreOf(IStream& stream);
ComPtr<IExtractImage2> ImageHandlerOf(const wchar_t* path);
ComPtr<IExtractIconW> IconHandlerOf(const wchar_t* path);

// One repeatable request to one object, which it owns.
struct Request {
    const char* name;
    HRESULT failure; // for a file that can't be read
    std::function<Answer()> ask;
};

// Every request of every handler, pictures in boxes of edge x edge.
std::vector<Request> StreamRequests(IStream& stream, UINT edge = 16);
std::vector<Request> PathRequests(const wchar_t* path, UINT edge = 16);
std::vector<Request> AllRequests(IStream& stream, const wchar_t* path, UINT edge = 16);

} // namespace vantrel::tests
