#include "chrome/video_window.h"

#include "chrome/double_click.h"
#include "ui/frame_cursor.h"
#include "ui/messages.h"
#include "ui/paint_buffer.h"

#include <commctrl.h>
#include <windowsx.h>

namespace brindlecast {

namespace {

constexpr const wchar_t* kClassName = L"BrindlecastVideoWindow";
constexpr UINT kClassStyle = CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS;
constexpr int kInitialSize = 100;
constexpr UINT_PTR kSubclassId = 1;

POINT PointOf(LPARAM lParam) {
    return {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
}

} // namespace

VideoWindow::VideoWindow() : backgroundBrush(CreateSolidBrush(RGB(0, 0, 0))) {}

bool VideoWindow::Create(HINSTANCE instance, HWND ownerWindow) {
    owner = ownerWindow;
    const Class windowClass{kClassName, kClassStyle};
    return Register(instance, windowClass) &&
           CreateHandle(instance, windowClass, {L"", kStyle, 0, 0, 0, kInitialSize, kInitialSize, owner});
}

void VideoWindow::AttachRenderer() {
    const HWND child = GetWindow(Handle(), GW_CHILD);
    if (child != nullptr &&
        SetWindowSubclass(child, RendererSubclass, kSubclassId, reinterpret_cast<DWORD_PTR>(this)) != FALSE) {
        rendererChild = child;
    }
}

void VideoWindow::DetachRenderer() {
    if (rendererChild != nullptr) {
        RemoveWindowSubclass(rendererChild, RendererSubclass, kSubclassId);
        rendererChild = nullptr;
    }
}

LRESULT VideoWindow::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_PAINT: Paint(); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_NCHITTEST: return IsOnFrame(lParam) ? HTTRANSPARENT : Default(message, wParam, lParam);
    case WM_SETCURSOR: {
        const wchar_t* sizing = SizingCursor(static_cast<short>(LOWORD(lParam)));
        SetCursor(LoadCursorW(nullptr, sizing != nullptr ? sizing : IDC_ARROW));
        return 1;
    }
    case WM_LBUTTONDOWN: OnLeftButtonDown(); return 0;
    case WM_LBUTTONDBLCLK: OnDoubleClick(); return 0;
    case WM_MOUSEMOVE:
    case WM_RBUTTONUP: return ForwardMouse(message, wParam, lParam);
    case WM_MBUTTONDOWN:
    case WM_MOUSEWHEEL: return SendMessageW(owner, message, wParam, lParam);
    default:
        if (message >= WM_KEYFIRST && message <= WM_KEYLAST) {
            return SendMessageW(owner, message, wParam, lParam);
        }
        return Default(message, wParam, lParam);
    }
}

void VideoWindow::Paint() {
    const PaintBuffer buffer(Handle());
    FillRect(buffer.Context(), &buffer.Client(), backgroundBrush.Get());
}

void VideoWindow::OnLeftButtonDown() {
    POINT cursor{};
    GetCursorPos(&cursor);
    const Press former{lastClickTick,
                       {static_cast<int>(lastClickPoint.x), static_cast<int>(lastClickPoint.y)}};
    const Press press{GetTickCount(), {static_cast<int>(cursor.x), static_cast<int>(cursor.y)}};
    const DoubleClickLimits limits{GetDoubleClickTime(), GetSystemMetrics(SM_CXDOUBLECLK),
                                   GetSystemMetrics(SM_CYDOUBLECLK)};
    if (IsDoubleClick(former, press, limits)) {
        OnDoubleClick();
        return;
    }
    lastClickTick = press.tick;
    lastClickPoint = cursor;
    if ((GetWindowLongPtrW(owner, GWL_STYLE) & WS_THICKFRAME) != 0) {
        // The press becomes one on a caption, so that the system moves the owner.
        ReleaseCapture();
        PostMessageW(owner, WM_NCLBUTTONDOWN, HTCAPTION, MAKELPARAM(cursor.x, cursor.y));
    }
}

// A third press right after is a first one again.
void VideoWindow::OnDoubleClick() {
    SendMessageW(owner, kMessageTogglePlay, 0, 0);
    lastClickTick = 0;
}

LRESULT VideoWindow::ForwardMouse(UINT message, WPARAM wParam, LPARAM lParam) const {
    POINT point = PointOf(lParam);
    MapWindowPoints(Handle(), owner, &point, 1);
    return SendMessageW(owner, message, wParam, MAKELPARAM(point.x, point.y));
}

bool VideoWindow::IsOnFrame(LPARAM screenPoint) const {
    return FrameZoneOnScreen(owner, PointOf(screenPoint)) != FrameZone::Inside;
}

LRESULT CALLBACK VideoWindow::RendererSubclass(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                               UINT_PTR id, DWORD_PTR self) {
    auto* host = reinterpret_cast<VideoWindow*>(self);
    switch (message) {
    case WM_NCDESTROY:
        RemoveWindowSubclass(window, RendererSubclass, id);
        host->rendererChild = nullptr;
        break;
    case WM_NCHITTEST:
        if (host->IsOnFrame(lParam)) {
            return HTTRANSPARENT;
        }
        break;
    case WM_SETCURSOR: {
        POINT cursor{};
        GetCursorPos(&cursor);
        if (const wchar_t* sizing = SizingCursor(HitTestCode(FrameZoneOnScreen(host->owner, cursor)))) {
            SetCursor(LoadCursorW(nullptr, sizing));
            return 1;
        }
        break;
    }
    default: break;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

} // namespace brindlecast
