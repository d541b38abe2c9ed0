#include "filters/renderer/direct3d_library.h"

#include "filters/renderer/presenter.h"

namespace brindlecast {

namespace {

// Wine runs Direct3D on a thread of its own that spins while it waits; on a machine whose processor does the
// drawing this takes as much time as the drawing. Its library reads the setting once, when it loads, from
// the environment that the C runtime of Wine's own libraries keeps. A user's setting stays.
void PrepareWine() {
    constexpr char kSetting[] = "WINE_D3D_CONFIG";
    if (!RunsUnderWine() || GetEnvironmentVariableA(kSetting, nullptr, 0) != 0) {
        return;
    }
    using PutEnvironment = int(__cdecl*)(const char*);
    const HMODULE runtime = LoadLibraryExW(L"ucrtbase.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    const auto put =
        runtime == nullptr
            ? nullptr
            : reinterpret_cast<PutEnvironment>(reinterpret_cast<void*>(GetProcAddress(runtime, "_putenv")));
    if (put != nullptr) {
        put("WINE_D3D_CONFIG=csmt=0");
    }
}

} // namespace

HMODULE LoadDirect3dLibrary(const wchar_t* name) {
    static const bool prepared = [] {
        PrepareWine();
        return true;
    }();
    static_cast<void>(prepared);
    return LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
}

} // namespace brindlecast
