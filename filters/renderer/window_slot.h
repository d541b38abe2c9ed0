#pragma once

#include <windows.h>

#include <mutex>

namespace brindlecast {

// The window that the drawing thread may draw into. The window's own thread empties the slot before it
// destroys the window; it then waits for at most one blit, because the drawing thread holds the lock only
// while it draws and makes no call that sends a message to the window.
class WindowSlot {
public:
    void Set(HWND newWindow) {
        const std::lock_guard lock(mutex);
        window = newWindow;
    }

    // Calls `action(window)` with the window locked in place; false when there is none.
    template <class Action>
    bool Use(Action&& action) {
        const std::lock_guard lock(mutex);
        if (window == nullptr) {
            return false;
        }
        action(window);
        return true;
    }

    [[nodiscard]] HWND Get() {
        const std::lock_guard lock(mutex);
        return window;
    }

private:
    std::mutex mutex;
    HWND window = nullptr;
};

} // namespace brindlecast
