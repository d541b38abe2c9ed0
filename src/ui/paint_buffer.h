#pragma once

#include "base/win32/unique_handle.h"

#include <windows.h>

namespace brindlecast {

// The memory bitmap of one WM_PAINT: begins the painting, gives a context of the client area's size that
// starts out black, and copies it to the window and ends the painting when it goes. Use it once per WM_PAINT.
class PaintBuffer {
public:
    explicit PaintBuffer(HWND painted);
    PaintBuffer(const PaintBuffer&) = delete;
    PaintBuffer& operator=(const PaintBuffer&) = delete;
    ~PaintBuffer();

    [[nodiscard]] HDC Context() const { return memory.Get(); }
    [[nodiscard]] const RECT& Client() const { return client; }

private:
    HWND window;
    PAINTSTRUCT paint{};
    RECT client{};
    UniqueMemoryDc memory;
    UniqueBitmap bitmap;
    HGDIOBJ oldBitmap = nullptr;
};

} // namespace brindlecast
