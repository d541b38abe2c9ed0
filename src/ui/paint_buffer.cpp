#include "ui/paint_buffer.h"

#include <algorithm>

namespace brindlecast {

PaintBuffer::PaintBuffer(HWND painted) : window(painted) {
    const HDC screen = BeginPaint(window, &paint);
    GetClientRect(window, &client);
    memory.Reset(CreateCompatibleDC(screen));
    // An empty client area still needs a bitmap to draw on.
    bitmap.Reset(
        CreateCompatibleBitmap(screen, std::max<int>(client.right, 1), std::max<int>(client.bottom, 1)));
    oldBitmap = SelectObject(memory.Get(), bitmap.Get());
    FillRect(memory.Get(), &client, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
}

PaintBuffer::~PaintBuffer() {
    BitBlt(paint.hdc, 0, 0, client.right, client.bottom, memory.Get(), 0, 0, SRCCOPY);
    SelectObject(memory.Get(), oldBitmap);
    EndPaint(window, &paint);
}

} // namespace brindlecast
