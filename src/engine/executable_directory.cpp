#include "engine/executable_directory.h"

#include <windows.h>

#include <shlwapi.h>

#include <array>

namespace brindlecast {

std::wstring ExecutableDirectory() {
    std::array<wchar_t, MAX_PATH> path{};
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    path.back() = L'\0';
    PathRemoveFileSpecW(path.data());
    return path.data();
}

} // namespace brindlecast
