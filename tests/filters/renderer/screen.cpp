#include "tests/filters/renderer/screen.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace brindlecast::test {

std::ostream& operator<<(std::ostream& out, const Color& color) {
    return out << "(" << color.red << ", " << color.green << ", " << color.blue << ")";
}

int Distance(const Color& a, const Color& b) {
    return std::max({std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
}

Color Image::At(int x, int y) const {
    const std::uint32_t pixel = pixels_.at(static_cast<std::size_t>(y * width_ + x));
    return {static_cast<int>(pixel >> 16 & 0xFF), static_cast<int>(pixel >> 8 & 0xFF),
            static_cast<int>(pixel & 0xFF)};
}

Image ReadScreen(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    POINT corner{0, 0};
    ClientToScreen(window, &corner);
    Image image(client.right, client.bottom);
    if (client.right == 0 || client.bottom == 0) {
        return image;
    }
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = client.right;
    info.bmiHeader.biHeight = -client.bottom;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, client.right, client.bottom, screen, corner.x, corner.y, SRCCOPY);
    GdiFlush();
    std::copy_n(static_cast<const std::uint32_t*>(bits), client.right * client.bottom, image.Data());
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return image;
}

bool PumpUntil(const std::function<bool()>& condition, int milliseconds) {
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(milliseconds);
    for (;;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        if (condition()) {
            return true;
        }
        if (GetTickCount64() >= end) {
            return false;
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
    }
}

void Pump(int milliseconds) {
    static_cast<void>(PumpUntil([] { return false; }, milliseconds));
}

HostWindow::HostWindow(int width, int height) {
    static const ATOM kClass = [] {
        WNDCLASSW description{};
        description.lpfnWndProc = Procedure;
        description.hInstance = GetModuleHandleW(nullptr);
        description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        description.lpszClassName = L"BrindlecastRendererTestHost";
        // Neither black nor a colour of a test picture: what the renderer leaves out is seen.
        description.hbrBackground = CreateSolidBrush(RGB(90, 60, 30));
        return RegisterClassW(&description);
    }();
    window_ =
        CreateWindowExW(WS_EX_TOPMOST, MAKEINTATOM(kClass), L"", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 40,
                        40, width, height, nullptr, nullptr, GetModuleHandleW(nullptr), this);
    if (window_ == nullptr) {
        throw std::runtime_error("no host window");
    }
    Pump(20);
}

HostWindow::~HostWindow() {
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
}

void HostWindow::Resize(int width, int height) const {
    SetWindowPos(window_, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

LRESULT CALLBACK HostWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        SetWindowLongPtrW(
            window, GWLP_USERDATA,
            reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
    }
    auto* self = reinterpret_cast<HostWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    const bool input = (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) ||
                       (message >= WM_KEYFIRST && message <= WM_KEYLAST);
    if (self != nullptr && input) {
        self->messages.push_back({message, wParam, lParam});
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace brindlecast::test
