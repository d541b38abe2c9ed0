#pragma once

#include "base/win32/unique_handle.h"
#include "ui/window.h"

namespace brindlecast {

// Host of the video renderer, which puts its own window inside, and the place where the user touches the
// picture: it tells its owner of double clicks, hands on what it does not handle, and lets a press move the
// owner. Child of the main window.
class VideoWindow final : public Window {
public:
    VideoWindow();
    // Whatever child is still there goes on without it.
    ~VideoWindow() override { DetachRenderer(); }

    // Creates the window at 0, 0 with 100 by 100 pixels, to be laid out by the owner. False on failure.
    [[nodiscard]] bool Create(HINSTANCE instance, HWND ownerWindow);

    // Keeps the frame's resize band and its cursors alive over the renderer's own window. Takes the first
    // child; without one nothing is attached.
    void AttachRenderer();
    void DetachRenderer();

    // No video is shown.
    bool idle = true;

protected:
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    static LRESULT CALLBACK RendererSubclass(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                             UINT_PTR id, DWORD_PTR self);

    void Paint();
    void OnLeftButtonDown();
    void OnDoubleClick();
    [[nodiscard]] LRESULT ForwardMouse(UINT message, WPARAM wParam, LPARAM lParam) const;
    [[nodiscard]] bool IsOnFrame(LPARAM screenPoint) const;

    HWND owner = nullptr;
    UniqueBrush backgroundBrush;
    HWND rendererChild = nullptr;
    DWORD lastClickTick = 0;
    POINT lastClickPoint{};
};

} // namespace brindlecast
