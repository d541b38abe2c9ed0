#include "filters/renderer/video_window.h"

#include <windowsx.h>

#include <mutex>
#include <utility>

namespace brindlecast {

namespace {

constexpr wchar_t kClassName[] = L"BrindlecastVideoRenderer";
constexpr UINT kDestroyMessage = WM_APP + 1;

HINSTANCE ModuleOfThisCode() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ModuleOfThisCode), &module);
    return module;
}

// The window class goes when no window needs it any more: Windows does not take it away with the module, and
// a later load would meet the old procedure's address.
class ClassUse {
public:
    [[nodiscard]] bool Add(WNDPROC procedure) {
        const std::lock_guard lock(mutex);
        if (!registered) {
            WNDCLASSEXW description{};
            description.cbSize = sizeof(description);
            // No CS_DBLCLKS: the drain measures double clicks itself, also the third press after two.
            description.lpfnWndProc = procedure;
            description.hInstance = ModuleOfThisCode();
            description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
            description.lpszClassName = kClassName;
            registered = RegisterClassExW(&description) != 0;
        }
        users += registered ? 1 : 0;
        return registered;
    }
    void Remove() {
        const std::lock_guard lock(mutex);
        --users;
    }
    // Not possible from within a window's destruction, hence apart from Remove.
    void Sweep() {
        const std::lock_guard lock(mutex);
        if (registered && users == 0) {
            registered = UnregisterClassW(kClassName, ModuleOfThisCode()) == 0;
        }
    }

private:
    std::mutex mutex;
    int users = 0;
    bool registered = false;
};

ClassUse& TheClass() {
    static ClassUse use;
    return use;
}

bool IsMouse(UINT message) {
    return message >= WM_MOUSEFIRST && message <= WM_MOUSELAST;
}

// Wheel messages carry screen coordinates, the others those of the window.
bool HasClientPoint(UINT message) {
    return IsMouse(message) && message != WM_MOUSEWHEEL && message != WM_MOUSEHWHEEL;
}

bool IsKey(UINT message) {
    return message >= WM_KEYFIRST && message <= WM_KEYLAST;
}

} // namespace

VideoWindow::VideoWindow(VideoWindowEvents& theEvents, std::shared_ptr<WindowSlot> theSlot)
    : events(theEvents), slot(std::move(theSlot)) {}

VideoWindow::~VideoWindow() {
    Detach();
    TheClass().Sweep();
}

void VideoWindow::ReleaseClass() {
    TheClass().Sweep();
}

HRESULT VideoWindow::Attach(HWND newOwner) {
    if (!IsWindow(newOwner)) {
        return E_INVALIDARG;
    }
    RECT client{};
    GetClientRect(newOwner, &client);
    if (const HWND window = handle.load()) {
        if (SetParent(window, newOwner) == nullptr) {
            return HRESULT_FROM_WIN32(GetLastError());
        }
        owner = newOwner;
        return S_OK;
    }
    if (!TheClass().Add(Procedure)) {
        return HRESULT_FROM_WIN32(GetLastError());
    }
    const HWND window = CreateWindowExW(
        WS_EX_NOPARENTNOTIFY, kClassName, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0,
        0, client.right, client.bottom, newOwner, nullptr, ModuleOfThisCode(), this);
    if (window == nullptr) {
        const HRESULT result = HRESULT_FROM_WIN32(GetLastError());
        TheClass().Remove();
        return result;
    }
    // First among the owner's children, where the application looks for it.
    SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    owner = newOwner;
    slot->Set(window);
    return S_OK;
}

void VideoWindow::Detach() {
    const HWND window = handle.exchange(nullptr);
    owner = nullptr;
    if (window == nullptr) {
        return;
    }
    slot->Set(nullptr);
    if (GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId()) {
        ShowWindow(window, SW_HIDE);
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        DestroyWindow(window);
        TheClass().Sweep();
        return;
    }
    // Only the window's own thread may destroy it; it no longer reaches this object.
    ShowWindowAsync(window, SW_HIDE);
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    PostMessageW(window, kDestroyMessage, 0, 0);
}

LRESULT CALLBACK VideoWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        auto* self = static_cast<VideoWindow*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        self->handle = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* self = reinterpret_cast<VideoWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == kDestroyMessage && self == nullptr) {
        DestroyWindow(window);
        return 0;
    }
    if (message == WM_NCDESTROY) {
        if (self != nullptr) { // the owner went away with its children
            self->slot->Set(nullptr);
            self->handle = nullptr;
            self->owner = nullptr;
        }
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        TheClass().Remove();
        return DefWindowProcW(window, message, wParam, lParam);
    }
    if (self == nullptr) {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    try {
        return self->Handle(window, message, wParam, lParam);
    } catch (...) {
        return 0;
    }
}

LRESULT VideoWindow::Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (IsMouse(message) || IsKey(message)) {
        PostToDrain(window, message, wParam, lParam);
        if (drain.load() != nullptr) {
            return 0;
        }
    }
    switch (message) {
    case WM_ERASEBKGND: return 1;
    case WM_PAINT: Paint(window); return 0;
    case WM_SIZE: events.OnPaintNeeded(); return 0;
    case WM_SETCURSOR:
        if (cursorHidden && LOWORD(lParam) == HTCLIENT) {
            SetCursor(nullptr);
            return TRUE;
        }
        break;
    default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void VideoWindow::Paint(HWND window) {
    PAINTSTRUCT paint{};
    const HDC context = BeginPaint(window, &paint);
    if (!events.HasPicture()) {
        FillRect(context, &paint.rcPaint, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    }
    EndPaint(window, &paint);
    events.OnPaintNeeded();
}

void VideoWindow::PostToDrain(HWND window, UINT message, WPARAM wParam, LPARAM lParam) const {
    const HWND receiver = drain.load();
    if (receiver == nullptr) {
        return;
    }
    if (HasClientPoint(message)) {
        POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        MapWindowPoints(window, receiver, &point, 1);
        lParam = MAKELPARAM(point.x, point.y);
    }
    PostMessageW(receiver, message, wParam, lParam);
}

} // namespace brindlecast
