#include "module/ModuleState.h"

namespace vantrel {

HINSTANCE g_moduleInstance = nullptr;
std::atomic<std::int32_t> g_moduleCount = 0;

void ModuleAddRef() {
    ++g_moduleCount;
}

void ModuleRelease() {
    --g_moduleCount;
}

} // namespace vantrel
