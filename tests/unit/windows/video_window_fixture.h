#pragma once

#include "base/display_scale.h"
#include "base/win32/geometry.h"
#include "base/win32/unique_handle.h"
#include "chrome/video_window.h"
#include "tests/graph/import_swap.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace brindlecast::testing {

struct Received {
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    bool operator==(const Received&) const = default;
};
inline void PrintTo(const Received& received, std::ostream* out) {
    *out << std::hex << "message 0x" << received.message << ", 0x" << received.wParam << ", 0x"
         << received.lParam << std::dec;
}

// A window without frame that keeps what it is sent of input, hit tests, cursors and the program's own
// messages, and answers all of that with a number that nobody else gives.
class RecordingWindow {
public:
    static constexpr LRESULT kAnswer = 77;

    RecordingWindow(DWORD style, const Rect& place, HWND parent) {
        WNDCLASSW description{};
        description.lpfnWndProc = Procedure;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = kClass;
        RegisterClassW(&description); // fails from the second time on
        window.Reset(CreateWindowExW(0, kClass, L"", style, place.left, place.top, place.Width(),
                                     place.Height(), parent, nullptr, description.hInstance, this));
    }

    [[nodiscard]] HWND Handle() const { return window.Get(); }
    void Destroy() { window.Reset(); }
    // What came since it was asked last.
    [[nodiscard]] std::vector<Received> Take() { return std::exchange(received, {}); }

private:
    static constexpr const wchar_t* kClass = L"VideoWindowTestRecorder";

    static bool IsKept(UINT message) {
        return (message >= WM_KEYFIRST && message <= WM_KEYLAST) ||
               (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) || message == WM_NCLBUTTONDOWN ||
               message == WM_NCHITTEST || message == WM_SETCURSOR || (message >= WM_USER && message < 0xC000);
    }
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_NCCREATE) {
            SetWindowLongPtrW(
                window, GWLP_USERDATA,
                reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
        }
        auto* self = reinterpret_cast<RecordingWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (message == WM_NCDESTROY && self != nullptr) {
            static_cast<void>(self->window.Release()); // gone with its parent, maybe
        }
        if (message == WM_NCCALCSIZE) {
            return 0;
        }
        if (self != nullptr && IsKept(message)) {
            self->received.push_back({message, wParam, lParam});
            return kAnswer;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    UniqueHwnd window;
    std::vector<Received> received;
};

// Clock and cursor as the program is told them.
inline DWORD toldTick = 0;
inline POINT toldCursor{};
inline DWORD WINAPI TellTick() {
    return toldTick;
}
inline BOOL WINAPI TellCursor(POINT* point) {
    *point = toldCursor;
    return TRUE;
}

// A video window in an owner that records, laid out like that of the main window.
class VideoWindowTest : public ::testing::Test {
protected:
    static constexpr Rect kOwnerPlace{200, 150, 600, 450};
    static constexpr Rect kVideoPlace{3, 35, 397, 237}; // in the owner

    VideoWindowTest() {
        toldTick = 100'000;
        toldCursor = {400, 300};
    }
    void SetUp() override {
        ASSERT_NE(ticks.Original(), nullptr);
        ASSERT_NE(cursor.Original(), nullptr);
        ASSERT_NE(owner.Handle(), nullptr);
        ASSERT_TRUE(video.Create(GetModuleHandleW(nullptr), owner.Handle()));
        MoveVideo(kVideoPlace);
        static_cast<void>(owner.Take());
    }
    void TearDown() override { SetSystemDpi(96); }

    void MoveVideo(const Rect& place) const {
        MoveWindow(video.Handle(), place.left, place.top, place.Width(), place.Height(), FALSE);
    }
    void PlaceOwner(const Rect& place) const {
        SetWindowPos(owner.Handle(), nullptr, place.left, place.top, place.Width(), place.Height(),
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
    LRESULT Send(UINT message, WPARAM wParam, LPARAM lParam) const {
        return SendMessageW(video.Handle(), message, wParam, lParam);
    }

    ImportSwap ticks{"kernel32.dll", "GetTickCount", reinterpret_cast<void*>(TellTick)};
    ImportSwap cursor{"user32.dll", "GetCursorPos", reinterpret_cast<void*>(TellCursor)};
    RecordingWindow owner{WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, kOwnerPlace, nullptr};
    VideoWindow video;
};

// The cursor that is set while something runs; null when none is.
template <class Action>
[[nodiscard]] HCURSOR CursorSetBy(const Action& action) {
    SetCursor(nullptr);
    action();
    return SetCursor(nullptr);
}

[[nodiscard]] inline HCURSOR SystemCursor(const wchar_t* name) {
    return LoadCursorW(nullptr, name);
}

[[nodiscard]] inline LPARAM PackedPoint(int x, int y) {
    return MAKELPARAM(x, y);
}

} // namespace brindlecast::testing
