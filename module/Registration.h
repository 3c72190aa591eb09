// Registration: writing and removing the module's registry values.
#pragma once

#include <windows.h>

namespace vantrel {

// Writes the registration and tells the Shell. Stops at the first value that can't be written: the values
// before it stay, and the Shell is not told.
HRESULT RegisterModule();

// Removes what RegisterModule wrote, except for the machine's property-handler binding, and tells the Shell.
// What can't be removed is skipped.
void UnregisterModule();

} // namespace vantrel
