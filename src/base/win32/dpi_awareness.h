#pragma once

#include <windows.h>

namespace brindlecast {

// Where libraries and their functions are looked up: the system's own calls, unless a test puts others in.
struct LibraryLookUp {
    HMODULE(WINAPI* loaded)(const wchar_t* name) = GetModuleHandleW; // null unless it is loaded already
    HMODULE(WINAPI* load)(const wchar_t* name) = LoadLibraryW;
    FARPROC(WINAPI* find)(HMODULE module, const char* name) = GetProcAddress;
};

// Asks for per-monitor awareness by the newest call that the system has; where it has none, or refuses, the
// process stays as it is. Before the first window.
void MakeProcessDpiAware(const LibraryLookUp& lookUp = {});

} // namespace brindlecast
