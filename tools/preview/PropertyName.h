// Names and texts of the properties and columns that handlers report.
#pragma once

#include <windows.h>

#include <propidl.h>
#include <wtypes.h>

#include <string>

namespace vantrel::tools {

// A short name for the properties that ZMI handlers serve, "{format} number" for any other. The system's own
// PSGetNameFromPropertyKey is left alone: Wine ends the process there.
std::wstring PropertyName(const PROPERTYKEY& key);

// The value as text, and clears it. Throws Failure for a type that no ZMI handler delivers.
std::wstring TakeText(PROPVARIANT& value);

} // namespace vantrel::tools
