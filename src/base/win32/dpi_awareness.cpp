#include "base/win32/dpi_awareness.h"

#include "base/win32/unique_handle.h"

#include <windows.h>

namespace brindlecast {

namespace {

// PROCESS_PER_MONITOR_DPI_AWARE, for systems before the context values.
constexpr int kPerMonitorAware = 2;

} // namespace

void MakeProcessDpiAware() {
    const HMODULE user32 = GetModuleHandleW(L"user32.dll");
    if (user32 == nullptr) {
        return;
    }
    using SetContext = BOOL(WINAPI*)(DPI_AWARENESS_CONTEXT);
    if (const auto setContext = FindFunction<SetContext>(user32, "SetProcessDpiAwarenessContext")) {
        setContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
        return;
    }
    // Stays loaded for the life of the process, as the awareness does.
    const HMODULE shcore = LoadLibraryW(L"Shcore.dll");
    using SetAwareness = HRESULT(WINAPI*)(int);
    if (const auto setAwareness =
            shcore != nullptr ? FindFunction<SetAwareness>(shcore, "SetProcessDpiAwareness") : nullptr) {
        setAwareness(kPerMonitorAware);
    }
}

} // namespace brindlecast
