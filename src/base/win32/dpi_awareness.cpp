#include "base/win32/dpi_awareness.h"

namespace brindlecast {

namespace {

// PROCESS_PER_MONITOR_DPI_AWARE, for systems before the context values.
constexpr int kPerMonitorAware = 2;

template <class Function>
Function Find(const LibraryLookUp& lookUp, HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(lookUp.find(module, name)));
}

} // namespace

void MakeProcessDpiAware(const LibraryLookUp& lookUp) {
    const HMODULE user32 = lookUp.loaded(L"user32.dll");
    if (user32 == nullptr) {
        return;
    }
    using SetContext = BOOL(WINAPI*)(DPI_AWARENESS_CONTEXT);
    if (const auto setContext = Find<SetContext>(lookUp, user32, "SetProcessDpiAwarenessContext")) {
        setContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
        return;
    }
    // Stays loaded for the life of the process, as the awareness does.
    const HMODULE shcore = lookUp.load(L"Shcore.dll");
    if (shcore == nullptr) {
        return;
    }
    using SetAwareness = HRESULT(WINAPI*)(int);
    if (const auto setAwareness = Find<SetAwareness>(lookUp, shcore, "SetProcessDpiAwareness")) {
        setAwareness(kPerMonitorAware);
    }
}

} // namespace brindlecast
