// A file and its frames described: in lines for people, or as JSON.
#pragma once

#include "tools/inspection/ZmiFile.h"
#include "tools/terminal/JsonObject.h"

#include <string>
#include <vector>

namespace vantrel::tools {

// "256 colours, index 7 is transparent".
std::wstring DescribeColors(const FrameRecord& frame);
// "3 x 5, 256 colours, 15 bytes at offset 722, colour table at offset 210".
std::wstring DescribeFrame(const FileFrame& frame);

// Lines about the file as a whole.
std::vector<std::wstring> DescribeFile(const ZmiFile& file);

// Add what is known about a frame, or about a file as a whole.
void AddFrame(JsonObject& object, const FileFrame& frame);
void AddFile(JsonObject& object, const ZmiFile& file);

} // namespace vantrel::tools
