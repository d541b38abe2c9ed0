#pragma once

#include <windows.h>

#include <mutex>

namespace brindlecast {

// The window that the drawing thread may draw into. The window's own thread empties the slot before it
// destroys the window; it then waits for at most one blit, because the drawing thread holds the lock only
// while it draws and makes no call that sends a message to the window.
class WindowSlot {
public:
    void Set(HWND window) {
        const std::lock_guard lock(mutex_);
        window_ = window;
    }

    // Calls `action(window)` with the window locked in place; false when there is none.
    template <class Action>
    bool Use(Action&& action) {
        const std::lock_guard lock(mutex_);
        if (window_ == nullptr) {
            return false;
        }
        action(window_);
        return true;
    }

    [[nodiscard]] HWND Get() {
        const std::lock_guard lock(mutex_);
        return window_;
    }

private:
    std::mutex mutex_;
    HWND window_ = nullptr;
};

} // namespace brindlecast
