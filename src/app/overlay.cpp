#include "app/overlay.h"

#include "app/overlay_fade.h"
#include "app/overlay_rendering.h"
#include "base/win32/gdiplus.h"
#include "base/win32/geometry.h"

#include <memory>
#include <optional>

namespace brindlecast {

namespace {

constexpr const wchar_t* kClassName = L"BrindlecastOverlay";
constexpr DWORD kExtendedStyle =
    WS_EX_NOACTIVATE | WS_EX_LAYERED | WS_EX_TOOLWINDOW | WS_EX_TRANSPARENT | WS_EX_TOPMOST;
static_assert(kExtendedStyle == 0x080800A8);

// The overlay's own start of GDI+, apart from the one of the process: begun by the first user, ended by the
// last.
struct GdiplusUsers {
    unsigned count = 0;
    std::optional<GdiplusSession> session;
};

GdiplusUsers gdiplusUsers;
std::unique_ptr<OverlayState> record;

bool AddGdiplusUser() {
    if (++gdiplusUsers.count == 1) {
        gdiplusUsers.session.emplace();
    }
    return static_cast<bool>(*gdiplusUsers.session);
}

void DropGdiplusUser() {
    if (--gdiplusUsers.count == 0) {
        gdiplusUsers.session.reset();
    }
}

// Once for the process: a class that is there already stays as it is.
void RegisterOverlayClass(HINSTANCE instance) {
    WNDCLASSEXW description{};
    description.cbSize = sizeof(description);
    description.style = CS_HREDRAW | CS_VREDRAW;
    description.lpfnWndProc = DefWindowProcW;
    description.hInstance = instance;
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.lpszClassName = kClassName;
    RegisterClassExW(&description);
}

// Where the window stands on the screen; nothing for one that is not there.
std::optional<Rect> PlaceOf(HWND window) {
    RECT bounds{};
    if (window == nullptr || GetWindowRect(window, &bounds) == FALSE) {
        return std::nullopt;
    }
    return FromRect(bounds);
}

bool HasWindow(OverlayState& state) {
    if (state.overlay) {
        return true;
    }
    const std::optional<Rect> place = PlaceOf(state.owner);
    if (!place) {
        return false;
    }
    state.overlay.Reset(CreateWindowExW(kExtendedStyle, kClassName, L"", WS_POPUP, place->left, place->top,
                                        place->Width(), place->Height(), nullptr, nullptr, state.instance,
                                        nullptr));
    return static_cast<bool>(state.overlay);
}

void LayOverOwner(const OverlayState& state) {
    const std::optional<Rect> place = PlaceOf(state.owner);
    if (state.overlay && place) {
        SetWindowPos(state.overlay.Get(), HWND_TOPMOST, place->left, place->top, place->Width(),
                     place->Height(), SWP_NOACTIVATE);
    }
}

// Puts the foreground window and the focus back that were there when it began.
class KeyboardGuard {
public:
    KeyboardGuard() : focus(GetFocus()), foreground(GetForegroundWindow()) {}
    KeyboardGuard(const KeyboardGuard&) = delete;
    KeyboardGuard& operator=(const KeyboardGuard&) = delete;
    ~KeyboardGuard() {
        if (foreground != nullptr && GetForegroundWindow() != foreground) {
            SetForegroundWindow(foreground);
        }
        if (focus != nullptr && GetFocus() != focus) {
            SetFocus(focus);
        }
    }

private:
    HWND focus;
    HWND foreground;
};

} // namespace

void CreateOverlay(HWND owner, HINSTANCE instance) {
    record = std::make_unique<OverlayState>();
    record->owner = owner;
    record->instance = instance;
    if (AddGdiplusUser()) {
        RegisterOverlayClass(instance);
    }
}

void ReleaseOverlay() {
    if (record == nullptr) {
        return;
    }
    record->overlay.Reset();
    DropGdiplusUser();
    record.reset();
}

void ShowOverlayMessage(const std::wstring& text, DWORD holdMs) {
    if (record == nullptr) {
        return;
    }
    OverlayState& state = *record;
    state.text = text;
    state.holdMs = holdMs;
    state.startTick = GetTickCount();
    state.opacity = 1.0F;
    state.active = true;
    if (!HasWindow(state)) {
        return;
    }
    const KeyboardGuard keyboard;
    LayOverOwner(state);
    RenderOverlay(state);
    SetWindowPos(state.overlay.Get(), HWND_TOPMOST, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

void TickOverlay() {
    if (!IsOverlayActive()) {
        return;
    }
    OverlayState& state = *record;
    const FadeStep step =
        AdvanceFade({state.startTick, state.holdMs, state.fadeMs}, GetTickCount(), state.opacity);
    switch (step.action) {
    case FadeAction::Keep: return;
    case FadeAction::Draw:
        state.opacity = step.opacity;
        RenderOverlay(state);
        LayOverOwner(state);
        return;
    case FadeAction::End:
        state.active = false;
        state.text.clear();
        if (state.overlay) {
            ShowWindow(state.overlay.Get(), SW_HIDE);
        }
        return;
    }
}

bool IsOverlayActive() {
    return record != nullptr && record->active;
}

OverlayState* CurrentOverlay() {
    return record.get();
}

} // namespace brindlecast
