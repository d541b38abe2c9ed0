#pragma once

#include "base/geometry.h"

#include <windows.h>

namespace brindlecast {

// Title bar and toolbar change between being children of the main window and, in full screen, being windows
// of their own above it. Both functions take any window and leave it where it is when the system refuses.
// Main thread.

// Takes a child out of its parent: a topmost popup without a taskbar button at that place of the screen,
// hidden.
void FloatBar(HWND bar, const Rect& screenRect);

// Makes a floating bar a visible child of that window again; where it stands there is the parent's affair.
void DockBar(HWND bar, HWND parent);

} // namespace brindlecast
