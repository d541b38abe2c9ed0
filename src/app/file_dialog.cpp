#include "app/file_dialog.h"

#include <commdlg.h>

#include <array>

namespace brindlecast {

namespace {

constexpr std::size_t kPathCapacity = 260;

} // namespace

std::optional<std::wstring> AskForFile(HWND owner, const wchar_t* title, const wchar_t* filter) {
    std::array<wchar_t, kPathCapacity> path{};
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = filter;
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = static_cast<DWORD>(path.size());
    dialog.lpstrTitle = title;
    dialog.Flags = OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
    if (GetOpenFileNameW(&dialog) == FALSE) {
        return std::nullopt;
    }
    return path.data();
}

} // namespace brindlecast
