#pragma once

#include "base/win32/geometry.h"
#include "ui/frame_zones.h"

#include <windows.h>

namespace brindlecast {

// Width of the resize band along the main window's edges, before scaling.
inline constexpr int kResizeBand = 6;

// The hit-test code of a zone; HTNOWHERE for the inside, whose code is its window's own affair.
[[nodiscard]] constexpr LRESULT HitTestCode(FrameZone zone) {
    switch (zone) {
    case FrameZone::Left: return HTLEFT;
    case FrameZone::Top: return HTTOP;
    case FrameZone::Right: return HTRIGHT;
    case FrameZone::Bottom: return HTBOTTOM;
    case FrameZone::TopLeft: return HTTOPLEFT;
    case FrameZone::TopRight: return HTTOPRIGHT;
    case FrameZone::BottomLeft: return HTBOTTOMLEFT;
    case FrameZone::BottomRight: return HTBOTTOMRIGHT;
    case FrameZone::Inside: break;
    }
    return HTNOWHERE;
}

// The cursor resource for a hit-test code of an edge or corner; null for every other code.
[[nodiscard]] inline const wchar_t* SizingCursor(LRESULT hitTestCode) {
    switch (hitTestCode) {
    case HTLEFT:
    case HTRIGHT: return IDC_SIZEWE;
    case HTTOP:
    case HTBOTTOM: return IDC_SIZENS;
    case HTTOPLEFT:
    case HTBOTTOMRIGHT: return IDC_SIZENWSE;
    case HTTOPRIGHT:
    case HTBOTTOMLEFT: return IDC_SIZENESW;
    default: return nullptr;
    }
}

// The zone of a screen point within the outer rectangle of a window without system frame.
[[nodiscard]] FrameZone FrameZoneOnScreen(HWND window, POINT screenPoint);

} // namespace brindlecast
