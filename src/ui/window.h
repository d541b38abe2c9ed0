#pragma once

#include <windows.h>

namespace brindlecast {

// A window with its own class whose messages go to one object. The object's address travels through the
// create parameter and lies in the window's user data from WM_NCCREATE to WM_NCDESTROY; outside of that the
// default procedure answers. The object does not own the window: whoever holds both destroys the window
// first. Main thread only.
class Window {
public:
    Window() = default;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // Null before creation and after destruction.
    [[nodiscard]] HWND Handle() const { return hwnd; }

protected:
    virtual ~Window();

    struct Class {
        const wchar_t* name;
        UINT style;
        HICON icon = nullptr;
        HICON smallIcon = nullptr;
    };
    struct Placement {
        const wchar_t* text;
        DWORD style;
        DWORD extendedStyle;
        int x;
        int y;
        int width;
        int height;
        HWND parent;
    };

    // Registers the class with the arrow cursor and no background, once per process: true at once for a name
    // that was registered here before. False when the system refuses, as it does a name that somebody else
    // took.
    [[nodiscard]] static bool Register(HINSTANCE instance, const Class& windowClass);
    // False when the window could not be created.
    [[nodiscard]] bool CreateHandle(HINSTANCE instance, const Class& windowClass, const Placement& placement);

    // What the object does not handle it passes to Default.
    virtual LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) = 0;
    [[nodiscard]] LRESULT Default(UINT message, WPARAM wParam, LPARAM lParam) const;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND hwnd = nullptr;
};

} // namespace brindlecast
