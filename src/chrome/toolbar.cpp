#include "chrome/toolbar.h"

#include <algorithm>

namespace brindlecast {

void Toolbar::SetVolumePercent(int percent) {
    state.volumePercent = std::clamp(percent, 0, 100);
}

void Toolbar::Refresh() const {
    InvalidateRect(Handle(), nullptr, FALSE);
}

LRESULT Toolbar::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return Default(message, wParam, lParam);
}

} // namespace brindlecast
