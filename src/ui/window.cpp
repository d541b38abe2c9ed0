#include "ui/window.h"

#include "base/trace.h"

#include <set>
#include <string>

namespace brindlecast {

Window::~Window() {
    if (hwnd != nullptr) {
        // The derived object is gone already: no message may reach it any more.
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
        DestroyWindow(hwnd);
    }
}

bool Window::Register(HINSTANCE instance, const Class& windowClass) {
    static std::set<std::wstring> registered;
    if (registered.contains(windowClass.name)) {
        return true;
    }
    WNDCLASSEXW description{};
    description.cbSize = sizeof(description);
    description.style = windowClass.style;
    description.lpfnWndProc = Procedure;
    description.hInstance = instance;
    description.hIcon = windowClass.icon;
    description.hIconSm = windowClass.smallIcon;
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.lpszClassName = windowClass.name;
    if (RegisterClassExW(&description) == 0) {
        return false;
    }
    registered.emplace(windowClass.name);
    return true;
}

bool Window::CreateHandle(HINSTANCE instance, const Class& windowClass, const Placement& placement) {
    return CreateWindowExW(placement.extendedStyle, windowClass.name, placement.text, placement.style,
                           placement.x, placement.y, placement.width, placement.height, placement.parent,
                           nullptr, instance, this) != nullptr;
}

LRESULT Window::Default(UINT message, WPARAM wParam, LPARAM lParam) const {
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

LRESULT CALLBACK Window::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* self = static_cast<Window*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
        self->hwnd = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* self = reinterpret_cast<Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self == nullptr) {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        self->hwnd = nullptr;
        return DefWindowProcW(window, message, wParam, lParam);
    }
    try {
        return self->HandleMessage(message, wParam, lParam);
    } catch (...) {
        // The platform can't carry an exception through its own frames.
        Trace(L"[Brindlecast] Exception in a window procedure (message=%u)\n", message);
        // A window that could not be made whole is not made.
        return message == WM_CREATE ? -1 : 0;
    }
}

} // namespace brindlecast
