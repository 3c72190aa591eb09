// The module's COM classes and what creates their objects.
#pragma once

#include <windows.h>

#include <objbase.h>

namespace vantrel {

// Creates an object of one class and returns the requested interface; see CreateObject.
using CreateInstanceFn = HRESULT (*)(REFIID iid, void** object);

// Null when the class is not one of the module's.
CreateInstanceFn FindCreator(REFCLSID classId);

} // namespace vantrel
