#pragma once

#include "base/geometry.h"

#include <windows.h>

#include <string>

namespace brindlecast::testing {

// Keys and mouse as a user gives them: they go to whatever has the focus or lies under the cursor.

void PressKey(WORD virtualKey);
// The same while the modifier, such as VK_CONTROL, is held.
void PressKeyWith(WORD modifier, WORD virtualKey);
void TypeText(const std::wstring& text);

void MoveCursor(Point screenPoint);
void Click(Point screenPoint);
void DoubleClick(Point screenPoint);
void ClickMiddle(Point screenPoint);
// A press that is held until the release; the cursor may be moved in between.
void PressLeft(Point screenPoint);
void ReleaseLeft();
// Presses at the first point, moves in steps, and lets go at the second.
void Drag(Point from, Point to);
void TurnWheel(Point screenPoint, int notches);

} // namespace brindlecast::testing
