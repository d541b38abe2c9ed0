#pragma once

#include "base/win32/unique_handle.h"

#include <windows.h>

#include <string>

namespace brindlecast {

// Short messages over the video: a click-through layered window of its own that lies exactly over the video
// window and holds nothing but the text. A child window could not stand above a picture that goes to the
// screen past the windows. One message is on show at a time; a new one takes its place at once.
//
// Everything here is for the main thread only.

// What is on show. There is one for the process.
struct OverlayState {
    HWND owner = nullptr; // the window to cover; not owned
    UniqueHwnd overlay;   // created by the first message
    std::wstring text;
    bool active = false;    // a message is on show
    DWORD startTick = 0;    // GetTickCount at the show
    DWORD holdMs = 2000;    // time at full opacity
    DWORD fadeMs = 300;     // time of the fade after it
    float opacity = 1.0F;   // at present, 0 to 1
    float fontSize = 32.0F; // pixels, not scaled, as is the text's place in the window
    float textX = 15.0F;
    float textY = 10.0F;
    HINSTANCE instance = nullptr; // of the window class
};

// Makes the record for messages over `owner`, which must outlive it, starts GDI+ for it and registers its
// window class. Without GDI+ messages simply do not appear. Followed by one ReleaseOverlay.
void CreateOverlay(HWND owner, HINSTANCE instance);
// Destroys the window, gives GDI+ back and frees the record. Without a record nothing happens.
void ReleaseOverlay();

// Shows a message at full opacity for `holdMs` milliseconds before it fades, laid over where the owner is
// now. Foreground window and focus stay as they are. An empty text draws nothing but takes its time all the
// same. Without a record nothing happens.
void ShowOverlayMessage(const std::wstring& text, DWORD holdMs);
// Takes the message on show on to the present moment: draws a step of its fade, over where the owner is by
// then, or hides it. Wanted every 16 ms while a message is on show; otherwise nothing happens.
void TickOverlay();
[[nodiscard]] bool IsOverlayActive();

// The record; null before CreateOverlay and after ReleaseOverlay.
[[nodiscard]] OverlayState* CurrentOverlay();

} // namespace brindlecast
