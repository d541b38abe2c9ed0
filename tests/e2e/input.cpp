#include "tests/e2e/input.h"

#include "tests/e2e/waits.h"

#include <vector>

namespace brindlecast::testing {

namespace {

using std::chrono::milliseconds;

// People are slower than this; some windows miss input that comes without any pause.
constexpr milliseconds kBetweenInputs{15};

INPUT Key(WORD virtualKey, wchar_t unit, DWORD flags) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = virtualKey;
    input.ki.wScan = unit;
    input.ki.dwFlags = flags;
    return input;
}

INPUT Mouse(DWORD flags, int wheel = 0) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    input.mi.mouseData = static_cast<DWORD>(wheel);
    return input;
}

void Send(INPUT input) {
    SendInput(1, &input, sizeof(input));
    LetPlay(kBetweenInputs);
}

} // namespace

void PressKey(WORD virtualKey) {
    const auto scanCode = static_cast<wchar_t>(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC));
    Send(Key(virtualKey, scanCode, 0));
    Send(Key(virtualKey, scanCode, KEYEVENTF_KEYUP));
}

void PressKeyWith(WORD modifier, WORD virtualKey) {
    const auto scanCode = static_cast<wchar_t>(MapVirtualKeyW(modifier, MAPVK_VK_TO_VSC));
    Send(Key(modifier, scanCode, 0));
    PressKey(virtualKey);
    Send(Key(modifier, scanCode, KEYEVENTF_KEYUP));
}

void TypeText(const std::wstring& text) {
    for (const wchar_t unit : text) {
        Send(Key(0, unit, KEYEVENTF_UNICODE));
        Send(Key(0, unit, KEYEVENTF_UNICODE | KEYEVENTF_KEYUP));
    }
}

void MoveCursor(Point screenPoint) {
    INPUT input = Mouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE);
    // Absolute coordinates count in 65536ths of the screen; the middle of the pixel is aimed at.
    input.mi.dx = (screenPoint.x * 65536 + 32768) / GetSystemMetrics(SM_CXSCREEN);
    input.mi.dy = (screenPoint.y * 65536 + 32768) / GetSystemMetrics(SM_CYSCREEN);
    Send(input);
}

void PressLeft(Point screenPoint) {
    MoveCursor(screenPoint);
    Send(Mouse(MOUSEEVENTF_LEFTDOWN));
}

void ReleaseLeft() {
    Send(Mouse(MOUSEEVENTF_LEFTUP));
}

void Click(Point screenPoint) {
    PressLeft(screenPoint);
    ReleaseLeft();
}

void DoubleClick(Point screenPoint) {
    Click(screenPoint);
    Click(screenPoint);
}

void ClickMiddle(Point screenPoint) {
    MoveCursor(screenPoint);
    Send(Mouse(MOUSEEVENTF_MIDDLEDOWN));
    Send(Mouse(MOUSEEVENTF_MIDDLEUP));
}

void Drag(Point from, Point to) {
    constexpr int kSteps = 8;
    PressLeft(from);
    for (int step = 1; step <= kSteps; ++step) {
        MoveCursor({from.x + (to.x - from.x) * step / kSteps, from.y + (to.y - from.y) * step / kSteps});
        LetPlay(kBetweenInputs);
    }
    ReleaseLeft();
}

void TurnWheel(Point screenPoint, int notches) {
    MoveCursor(screenPoint);
    Send(Mouse(MOUSEEVENTF_WHEEL, notches * WHEEL_DELTA));
}

} // namespace brindlecast::testing
