#include "chrome/title_bar.h"

namespace brindlecast {

void TitleBar::SetFileText(const std::wstring& text) {
    fileText = text;
    InvalidateRect(Handle(), nullptr, FALSE);
}

void TitleBar::RestoreOwner() {
    SetWindowPlacement(owner, &savedPlacement);
    maximized = false;
}

LRESULT TitleBar::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return Default(message, wParam, lParam);
}

} // namespace brindlecast
