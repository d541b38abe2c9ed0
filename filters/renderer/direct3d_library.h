#pragma once

#include <windows.h>

namespace brindlecast {

// Loads one of the system's Direct3D libraries, which then stays for the life of the process; null without
// it. Loading at the first use keeps the module usable in a system without them and lets Wine be prepared
// before. Any thread.
[[nodiscard]] HMODULE LoadDirect3dLibrary(const wchar_t* name);

// A function of such a library, or null.
template <class Function>
[[nodiscard]] Function FindDirect3d(const wchar_t* library, const char* name) {
    const HMODULE module = LoadDirect3dLibrary(library);
    return module == nullptr
               ? nullptr
               : reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

} // namespace brindlecast
