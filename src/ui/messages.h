#pragma once

#include <windows.h>

namespace brindlecast {

// What the main window is asked by its children, by itself and by the filter graph. The numbers are fixed:
// all of them are handled on the main thread, and those without a stated result return 0.
enum MainWindowMessage : UINT {
    kMessageGraphEvent = WM_USER + 100, // posted by the graph: its event queue holds something
    kMessageTogglePlay = WM_USER + 200,
    kMessageStop = WM_USER + 201,
    kMessageStepBackward = WM_USER + 202,
    kMessageStepForward = WM_USER + 203,
    kMessageOpenDialog = WM_USER + 204,
    kMessageIsPlaying = WM_USER + 205, // returns 1 while a file runs or is paused
    kMessageSeek = WM_USER + 206,      // wParam: position in ten-thousandths of the duration
    kMessageSetVolume = WM_USER + 207, // wParam: percent
    kMessageSetMuted = WM_USER + 208,  // wParam: flag
    // Posted by the play list: it has hidden itself.
    kMessagePlaylistHidden = WM_USER + 222,
};

} // namespace brindlecast
