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
        const std::lock_guard lock(mutex_);
        if (!registered_) {
            WNDCLASSEXW description{};
            description.cbSize = sizeof(description);
            // No CS_DBLCLKS: the drain measures double clicks itself, also the third press after two.
            description.lpfnWndProc = procedure;
            description.hInstance = ModuleOfThisCode();
            description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
            description.lpszClassName = kClassName;
            registered_ = RegisterClassExW(&description) != 0;
        }
        users_ += registered_ ? 1 : 0;
        return registered_;
    }
    void Remove() {
        const std::lock_guard lock(mutex_);
        --users_;
    }
    // Not possible from within a window's destruction, hence apart from Remove.
    void Sweep() {
        const std::lock_guard lock(mutex_);
        if (registered_ && users_ == 0) {
            registered_ = UnregisterClassW(kClassName, ModuleOfThisCode()) == 0;
        }
    }

private:
    std::mutex mutex_;
    int users_ = 0;
    bool registered_ = false;
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

VideoWindow::VideoWindow(VideoWindowEvents& events, std::shared_ptr<WindowSlot> slot)
    : events_(events), slot_(std::move(slot)) {}

VideoWindow::~VideoWindow() {
    Detach();
    TheClass().Sweep();
}

void VideoWindow::ReleaseClass() {
    TheClass().Sweep();
}

HRESULT VideoWindow::Attach(HWND owner) {
    if (!IsWindow(owner)) {
        return E_INVALIDARG;
    }
    RECT client{};
    GetClientRect(owner, &client);
    if (const HWND window = window_.load()) {
        if (SetParent(window, owner) == nullptr) {
            return HRESULT_FROM_WIN32(GetLastError());
        }
        owner_ = owner;
        return S_OK;
    }
    if (!TheClass().Add(Procedure)) {
        return HRESULT_FROM_WIN32(GetLastError());
    }
    const HWND window = CreateWindowExW(
        WS_EX_NOPARENTNOTIFY, kClassName, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0,
        0, client.right, client.bottom, owner, nullptr, ModuleOfThisCode(), this);
    if (window == nullptr) {
        const HRESULT result = HRESULT_FROM_WIN32(GetLastError());
        TheClass().Remove();
        return result;
    }
    // First among the owner's children, where the application looks for it.
    SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    owner_ = owner;
    slot_->Set(window);
    return S_OK;
}

void VideoWindow::Detach() {
    const HWND window = window_.exchange(nullptr);
    owner_ = nullptr;
    if (window == nullptr) {
        return;
    }
    slot_->Set(nullptr);
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
        self->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* self = reinterpret_cast<VideoWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == kDestroyMessage && self == nullptr) {
        DestroyWindow(window);
        return 0;
    }
    if (message == WM_NCDESTROY) {
        if (self != nullptr) { // the owner went away with its children
            self->slot_->Set(nullptr);
            self->window_ = nullptr;
            self->owner_ = nullptr;
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
        if (drain_.load() != nullptr) {
            return 0;
        }
    }
    switch (message) {
    case WM_ERASEBKGND: return 1;
    case WM_PAINT: Paint(window); return 0;
    case WM_SIZE: events_.OnPaintNeeded(); return 0;
    case WM_SETCURSOR:
        if (cursorHidden_ && LOWORD(lParam) == HTCLIENT) {
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
    if (!events_.HasPicture()) {
        FillRect(context, &paint.rcPaint, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    }
    EndPaint(window, &paint);
    events_.OnPaintNeeded();
}

void VideoWindow::PostToDrain(HWND window, UINT message, WPARAM wParam, LPARAM lParam) const {
    const HWND drain = drain_.load();
    if (drain == nullptr) {
        return;
    }
    if (HasClientPoint(message)) {
        POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        MapWindowPoints(window, drain, &point, 1);
        lParam = MAKELPARAM(point.x, point.y);
    }
    PostMessageW(drain, message, wParam, lParam);
}

} // namespace brindlecast
