#pragma once

namespace brindlecast {

// WM_USER, which only the platform's headers define.
inline constexpr unsigned kFirstOwnMessage = 1024;

// What the main window is asked by its children, by itself and by the filter graph. The numbers are fixed:
// all of them are handled on the main thread, and those without a stated result return 0.
enum MainWindowMessage : unsigned {
    kMessageGraphEvent = kFirstOwnMessage + 100, // posted by the graph: its event queue holds something
    kMessageTogglePlay = kFirstOwnMessage + 200,
    kMessageStop = kFirstOwnMessage + 201,
    kMessageStepBackward = kFirstOwnMessage + 202,
    kMessageStepForward = kFirstOwnMessage + 203,
    kMessageOpenDialog = kFirstOwnMessage + 204,
    kMessageIsPlaying = kFirstOwnMessage + 205, // returns 1 while a file runs or is paused
    kMessageSeek = kFirstOwnMessage + 206,      // wParam: position in ten-thousandths of the duration
    kMessageSetVolume = kFirstOwnMessage + 207, // wParam: percent
    kMessageSetMuted = kFirstOwnMessage + 208,  // wParam: flag
    kMessageTurnLeft = kFirstOwnMessage + 209,
    kMessageTurnRight = kFirstOwnMessage + 210,
    kMessageFlipHorizontal = kFirstOwnMessage + 211,
    kMessageFlipVertical = kFirstOwnMessage + 212,
    kMessageTogglePlaylist = kFirstOwnMessage + 213,
    kMessageShowSettings = kFirstOwnMessage + 214,
    kMessageSubtitleMenu = kFirstOwnMessage + 215,   // wParam, lParam: screen x, y
    kMessageAudioTrackMenu = kFirstOwnMessage + 216, // wParam, lParam: screen x, y
    kMessageToggleFullScreen = kFirstOwnMessage + 217,
    kMessagePlayItem = kFirstOwnMessage + 220,       // wParam: index in the play list
    kMessagePlayItemAt = kFirstOwnMessage + 221,     // wParam: index in the play list; lParam: milliseconds
    kMessagePlaylistHidden = kFirstOwnMessage + 222, // the playlist window has hidden itself
    kMessageCurrentFile =
        kFirstOwnMessage + 230, // wParam: wchar_t buffer; lParam: its capacity in characters
    kMessageCurrentPosition = kFirstOwnMessage + 231 // returns milliseconds
};

} // namespace brindlecast
