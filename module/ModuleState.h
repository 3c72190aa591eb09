// The module's process-wide state: its handle and the count that decides whether it may be unloaded.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>

namespace vantrel {

// Set on process attach, before any other entry can run.
extern HINSTANCE g_moduleInstance;

// Live class factories plus outstanding server locks; objects created by the factories do not count.
extern std::atomic<std::int32_t> g_moduleCount;

void ModuleAddRef();
void ModuleRelease();

} // namespace vantrel
