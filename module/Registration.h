// What registration tools ask of the module: to write its registry values and to remove them.
#pragma once

#include <windows.h>

namespace vantrel {

// Writes the registration and tells the Shell. Stops at the first value that can't be written: the values
// before it stay, and the Shell is not told.
HRESULT RegisterModule();

// Removes what RegisterModule wrote, except for the machine's property-handler binding, and tells the Shell.
// What can't be removed is passed over.
void UnregisterModule();

} // namespace vantrel
