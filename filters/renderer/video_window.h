#pragma once

#include "filters/renderer/window_slot.h"

#include <atomic>
#include <memory>

namespace brindlecast {

// The owner is told what the window's procedure sees. Called on the window's thread.
class VideoWindowEvents {
public:
    // The window must be drawn anew (uncovered, resized).
    virtual void OnPaintNeeded() = 0;
    // True when the drawing thread will fill the window; else it is filled black here.
    [[nodiscard]] virtual bool HasPicture() = 0;

protected:
    ~VideoWindowEvents() = default;
};

// The child window that shows the picture. It exists while it has an owner. The thread that called Create
// owns it; the other methods may be called on any thread, but only that one destroys it at once.
class VideoWindow {
public:
    VideoWindow(VideoWindowEvents& theEvents, std::shared_ptr<WindowSlot> theSlot);
    ~VideoWindow();

    // Makes the window as a child of `owner`, as large as its client area, visible, or moves it there.
    [[nodiscard]] HRESULT Attach(HWND newOwner);
    // Hides the window, takes it from the drawing thread and destroys it.
    void Detach();

    [[nodiscard]] HWND Handle() const noexcept { return handle.load(); }
    [[nodiscard]] HWND Owner() const noexcept { return owner.load(); }

    // Where mouse and key messages are posted; null posts none.
    void SetDrain(HWND newDrain) noexcept { drain = newDrain; }
    [[nodiscard]] HWND Drain() const noexcept { return drain.load(); }
    void HideCursor(bool hide) noexcept { cursorHidden = hide; }
    [[nodiscard]] bool IsCursorHidden() const noexcept { return cursorHidden.load(); }

    // Before the module is unloaded: takes the window class away if no window is left.
    static void ReleaseClass();

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    [[nodiscard]] LRESULT Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Paint(HWND window);
    void PostToDrain(HWND window, UINT message, WPARAM wParam, LPARAM lParam) const;

    VideoWindowEvents& events;
    std::shared_ptr<WindowSlot> slot;
    std::atomic<HWND> handle{nullptr};
    std::atomic<HWND> owner{nullptr};
    std::atomic<HWND> drain{nullptr};
    std::atomic<bool> cursorHidden{false};
};

} // namespace brindlecast
