#include "filters/renderer/video_window_control.h"

#include <vfwmsgs.h>

namespace brindlecast {

namespace {

// Styles that IVideoWindow does not let an application set.
constexpr LONG kRefusedStyles = WS_DISABLED | WS_HSCROLL | WS_MAXIMIZE | WS_MINIMIZE | WS_VSCROLL;
// The window stays a visible or hidden child without a frame, whatever is asked.
constexpr LONG kKeptStyles = WS_VISIBLE;
constexpr LONG kForcedStyles = WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;

HWND ToWindow(OAHWND handle) {
    return reinterpret_cast<HWND>(handle);
}
OAHWND FromWindow(HWND window) {
    return reinterpret_cast<OAHWND>(window);
}
LONG ToOaBool(bool value) {
    return value ? OATRUE : OAFALSE;
}

} // namespace

HRESULT VideoWindowControl::NeedWindow(HWND* window) const {
    *window = core.Window().Handle();
    if (*window != nullptr) {
        return S_OK;
    }
    return core.IsConnected() ? E_UNEXPECTED : VFW_E_NOT_CONNECTED;
}

HRESULT VideoWindowControl::Place(RECT* place) const {
    HWND window = nullptr;
    const HRESULT result = NeedWindow(&window);
    if (FAILED(result)) {
        return result;
    }
    GetWindowRect(window, place);
    MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(place), 2);
    return S_OK;
}

template <class Change>
HRESULT VideoWindowControl::Move(Change&& change) {
    RECT place{};
    const HRESULT result = Place(&place);
    if (FAILED(result)) {
        return result;
    }
    LONG left = place.left;
    LONG top = place.top;
    LONG width = place.right - place.left;
    LONG height = place.bottom - place.top;
    change(left, top, width, height);
    return SetWindowPosition(left, top, width, height);
}

template <class Read>
HRESULT VideoWindowControl::ReadPlace(LONG* value, Read&& read) const {
    if (value == nullptr) {
        return E_POINTER;
    }
    RECT place{};
    const HRESULT result = Place(&place);
    if (SUCCEEDED(result)) {
        *value = read(place);
    }
    return result;
}

STDMETHODIMP VideoWindowControl::put_Caption(BSTR caption) {
    HWND window = nullptr;
    const HRESULT result = NeedWindow(&window);
    if (SUCCEEDED(result)) {
        SetWindowTextW(window, caption != nullptr ? caption : L"");
    }
    return result;
}

STDMETHODIMP VideoWindowControl::get_Caption(BSTR* caption) {
    if (caption == nullptr) {
        return E_POINTER;
    }
    *caption = nullptr;
    HWND window = nullptr;
    const HRESULT result = NeedWindow(&window);
    if (FAILED(result)) {
        return result;
    }
    return Guarded([&] {
        std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
        GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
        *caption = SysAllocString(text.c_str());
        return *caption != nullptr ? S_OK : E_OUTOFMEMORY;
    });
}

STDMETHODIMP VideoWindowControl::put_WindowStyle(LONG style) {
    if ((style & kRefusedStyles) != 0) {
        return E_INVALIDARG;
    }
    HWND window = nullptr;
    const HRESULT result = NeedWindow(&window);
    if (SUCCEEDED(result)) {
        const LONG now = GetWindowLongW(window, GWL_STYLE);
        const LONG frameless =
            style & ~(WS_CAPTION | WS_THICKFRAME | WS_SYSMENU | static_cast<LONG>(WS_POPUP));
        SetWindowLongW(window, GWL_STYLE, (now & kKeptStyles) | (frameless & ~kKeptStyles) | kForcedStyles);
        SetWindowPos(window, nullptr, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    }
    return result;
}

STDMETHODIMP VideoWindowControl::get_WindowStyle(LONG* style) {
    HWND window = nullptr;
    const HRESULT result = style != nullptr ? NeedWindow(&window) : E_POINTER;
    if (SUCCEEDED(result)) {
        *style = GetWindowLongW(window, GWL_STYLE);
    }
    return result;
}

STDMETHODIMP VideoWindowControl::put_WindowStyleEx(LONG style) {
    if ((style & kRefusedStyles) != 0) {
        return E_INVALIDARG;
    }
    HWND window = nullptr;
    const HRESULT result = NeedWindow(&window);
    if (SUCCEEDED(result)) {
        SetWindowLongW(window, GWL_EXSTYLE, style);
    }
    return result;
}

STDMETHODIMP VideoWindowControl::get_WindowStyleEx(LONG* style) {
    HWND window = nullptr;
    const HRESULT result = style != nullptr ? NeedWindow(&window) : E_POINTER;
    if (SUCCEEDED(result)) {
        *style = GetWindowLongW(window, GWL_EXSTYLE);
    }
    return result;
}

STDMETHODIMP VideoWindowControl::put_AutoShow(LONG autoShow) {
    return autoShow == OAFALSE ? S_OK : E_NOTIMPL;
}

STDMETHODIMP VideoWindowControl::get_AutoShow(LONG* autoShow) {
    if (autoShow == nullptr) {
        return E_POINTER;
    }
    *autoShow = OAFALSE;
    return S_OK;
}

STDMETHODIMP VideoWindowControl::put_WindowState(LONG state) {
    HWND window = nullptr;
    const HRESULT result = NeedWindow(&window);
    if (SUCCEEDED(result)) {
        ShowWindow(window, state);
    }
    return result;
}

STDMETHODIMP VideoWindowControl::get_WindowState(LONG* state) {
    HWND window = nullptr;
    const HRESULT result = state != nullptr ? NeedWindow(&window) : E_POINTER;
    if (SUCCEEDED(result)) {
        const bool visible = (GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0;
        *state = visible ? SW_SHOW : SW_HIDE;
    }
    return result;
}

STDMETHODIMP VideoWindowControl::put_Visible(LONG visible) {
    HWND window = nullptr;
    const HRESULT result = NeedWindow(&window);
    if (SUCCEEDED(result)) {
        ShowWindow(window, visible != OAFALSE ? SW_SHOWNA : SW_HIDE);
    }
    return result;
}

STDMETHODIMP VideoWindowControl::get_Visible(LONG* visible) {
    HWND window = nullptr;
    const HRESULT result = visible != nullptr ? NeedWindow(&window) : E_POINTER;
    if (SUCCEEDED(result)) {
        *visible = ToOaBool((GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0);
    }
    return result;
}

STDMETHODIMP VideoWindowControl::put_Left(LONG left) {
    return Move([left](LONG& x, LONG&, LONG&, LONG&) { x = left; });
}

STDMETHODIMP VideoWindowControl::get_Left(LONG* left) {
    return ReadPlace(left, [](const RECT& place) { return place.left; });
}

STDMETHODIMP VideoWindowControl::put_Width(LONG width) {
    return Move([width](LONG&, LONG&, LONG& w, LONG&) { w = width; });
}

STDMETHODIMP VideoWindowControl::get_Width(LONG* width) {
    return ReadPlace(width, [](const RECT& place) { return place.right - place.left; });
}

STDMETHODIMP VideoWindowControl::put_Top(LONG top) {
    return Move([top](LONG&, LONG& y, LONG&, LONG&) { y = top; });
}

STDMETHODIMP VideoWindowControl::get_Top(LONG* top) {
    return ReadPlace(top, [](const RECT& place) { return place.top; });
}

STDMETHODIMP VideoWindowControl::put_Height(LONG height) {
    return Move([height](LONG&, LONG&, LONG&, LONG& h) { h = height; });
}

STDMETHODIMP VideoWindowControl::get_Height(LONG* height) {
    return ReadPlace(height, [](const RECT& place) { return place.bottom - place.top; });
}

STDMETHODIMP VideoWindowControl::put_Owner(OAHWND owner) {
    return Guarded([&]() -> HRESULT {
        if (owner == 0) {
            core.Window().Detach();
            return core.IsConnected() ? S_OK : VFW_E_NOT_CONNECTED;
        }
        return core.IsConnected() ? core.Window().Attach(ToWindow(owner)) : VFW_E_NOT_CONNECTED;
    });
}

STDMETHODIMP VideoWindowControl::get_Owner(OAHWND* owner) {
    if (owner == nullptr) {
        return E_POINTER;
    }
    *owner = FromWindow(core.Window().Owner());
    return S_OK;
}

STDMETHODIMP VideoWindowControl::put_MessageDrain(OAHWND drain) {
    if (drain != 0 && !IsWindow(ToWindow(drain))) {
        return E_INVALIDARG;
    }
    if (!core.IsConnected() && drain != 0) {
        return VFW_E_NOT_CONNECTED;
    }
    core.Window().SetDrain(ToWindow(drain));
    return S_OK;
}

STDMETHODIMP VideoWindowControl::get_MessageDrain(OAHWND* drain) {
    if (drain == nullptr) {
        return E_POINTER;
    }
    *drain = FromWindow(core.Window().Drain());
    return S_OK;
}

STDMETHODIMP VideoWindowControl::SetWindowForeground(LONG focus) {
    HWND window = nullptr;
    const HRESULT result = NeedWindow(&window);
    if (SUCCEEDED(result) && focus != OAFALSE) {
        SetForegroundWindow(GetAncestor(window, GA_ROOT));
    }
    return result;
}

STDMETHODIMP VideoWindowControl::NotifyOwnerMessage(OAHWND, LONG, LONG_PTR, LONG_PTR) {
    return S_OK; // nothing that the owner hears changes the picture: no palette, no colour of the system
}

STDMETHODIMP VideoWindowControl::SetWindowPosition(LONG left, LONG top, LONG width, LONG height) {
    if (width < 0 || height < 0) {
        return E_INVALIDARG;
    }
    HWND window = nullptr;
    const HRESULT result = NeedWindow(&window);
    if (FAILED(result)) {
        return result;
    }
    return SetWindowPos(window, nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE)
               ? S_OK
               : HRESULT_FROM_WIN32(GetLastError());
}

STDMETHODIMP VideoWindowControl::GetWindowPosition(LONG* left, LONG* top, LONG* width, LONG* height) {
    if (left == nullptr || top == nullptr || width == nullptr || height == nullptr) {
        return E_POINTER;
    }
    RECT place{};
    const HRESULT result = Place(&place);
    if (SUCCEEDED(result)) {
        *left = place.left;
        *top = place.top;
        *width = place.right - place.left;
        *height = place.bottom - place.top;
    }
    return result;
}

STDMETHODIMP VideoWindowControl::GetMinIdealImageSize(LONG* width, LONG* height) {
    if (width == nullptr || height == nullptr) {
        return E_POINTER;
    }
    const auto size = core.VideoSize();
    if (!size) {
        return VFW_E_NOT_CONNECTED;
    }
    *width = size->width;
    *height = size->height;
    return S_OK;
}

STDMETHODIMP VideoWindowControl::GetMaxIdealImageSize(LONG* width, LONG* height) {
    return GetMinIdealImageSize(width, height);
}

STDMETHODIMP VideoWindowControl::GetRestorePosition(LONG* left, LONG* top, LONG* width, LONG* height) {
    return GetWindowPosition(left, top, width, height);
}

STDMETHODIMP VideoWindowControl::HideCursor(LONG hide) {
    HWND window = nullptr;
    const HRESULT result = NeedWindow(&window);
    if (SUCCEEDED(result)) {
        core.Window().HideCursor(hide != OAFALSE);
    }
    return result;
}

STDMETHODIMP VideoWindowControl::IsCursorHidden(LONG* hidden) {
    if (hidden == nullptr) {
        return E_POINTER;
    }
    *hidden = ToOaBool(core.Window().IsCursorHidden());
    return S_OK;
}

} // namespace brindlecast
