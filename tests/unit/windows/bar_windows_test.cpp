#include "app/bar_windows.h"

#include "base/win32/geometry.h"
#include "base/win32/unique_handle.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

constexpr Rect kParentRect{200, 150, 1000, 650};
constexpr Rect kFloating{0, 0, 1280, 32};

// A class that does not let hits through.
constexpr const wchar_t* kClass = L"BUTTON";

// The system sets one bit for every window that is no child, and it stays.
DWORD StyleOf(HWND window) {
    return static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)) & ~DWORD{WS_CLIPSIBLINGS};
}

DWORD ExtendedStyleOf(HWND window) {
    return static_cast<DWORD>(GetWindowLongPtrW(window, GWL_EXSTYLE));
}

Rect PlaceOf(HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    return FromRect(rect);
}

class BarWindowsTest : public ::testing::Test {
protected:
    UniqueHwnd parent{CreateWindowExW(0, kClass, L"parent", WS_POPUP | WS_VISIBLE, kParentRect.left,
                                      kParentRect.top, kParentRect.Width(), kParentRect.Height(), nullptr,
                                      nullptr, nullptr, nullptr)};
    UniqueHwnd bar{CreateWindowExW(0, kClass, L"bar", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 3, 3, 794, 32,
                                   parent.Get(), nullptr, nullptr, nullptr)};
};

TEST_F(BarWindowsTest, AFloatingBarIsAHiddenTopmostWindowOfItsOwn) {
    ASSERT_NE(bar.Get(), nullptr);
    FloatBar(bar.Get(), kFloating);
    EXPECT_EQ(StyleOf(bar.Get()), 0x82000000U);
    EXPECT_EQ(ExtendedStyleOf(bar.Get()), 136U);
    EXPECT_EQ(GetAncestor(bar.Get(), GA_PARENT), GetDesktopWindow());
    EXPECT_EQ(GetWindow(bar.Get(), GW_OWNER), nullptr);
    EXPECT_EQ(PlaceOf(bar.Get()), kFloating);
    EXPECT_EQ(IsWindowVisible(bar.Get()), FALSE);
    EXPECT_NE(IsWindowVisible(parent.Get()), FALSE);
}

TEST_F(BarWindowsTest, AFloatingBarShowsAboveATopmostWindow) {
    SetWindowPos(parent.Get(), HWND_TOPMOST, 0, 0, 1280, 720, SWP_NOACTIVATE);
    FloatBar(bar.Get(), kFloating);
    SetWindowPos(bar.Get(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
    EXPECT_EQ(WindowFromPoint({640, 16}), bar.Get());
    EXPECT_EQ(WindowFromPoint({640, 32}), parent.Get());
    ShowWindow(bar.Get(), SW_HIDE);
    EXPECT_EQ(WindowFromPoint({640, 16}), parent.Get());
}

TEST_F(BarWindowsTest, ADockedBarIsAVisibleChildWithoutExtendedStyles) {
    for (const bool shown : {false, true}) {
        SCOPED_TRACE(shown);
        FloatBar(bar.Get(), kFloating);
        ShowWindow(bar.Get(), shown ? SW_SHOWNOACTIVATE : SW_HIDE);
        DockBar(bar.Get(), parent.Get());
        EXPECT_EQ(StyleOf(bar.Get()), 0x52000000U);
        EXPECT_EQ(ExtendedStyleOf(bar.Get()), 0U);
        EXPECT_EQ(GetAncestor(bar.Get(), GA_PARENT), parent.Get());
        EXPECT_NE(IsWindowVisible(bar.Get()), FALSE);
        MoveWindow(bar.Get(), 3, 3, 794, 32, TRUE);
        EXPECT_EQ(PlaceOf(bar.Get()), (Rect{203, 153, 997, 185}));
        EXPECT_EQ(ChildWindowFromPoint(parent.Get(), {10, 10}), bar.Get());
    }
}

TEST_F(BarWindowsTest, ADockedBarGoesAndComesWithItsParent) {
    FloatBar(bar.Get(), kFloating);
    DockBar(bar.Get(), parent.Get());
    MoveWindow(bar.Get(), 3, 3, 794, 32, TRUE);
    SetWindowPos(parent.Get(), nullptr, 300, 250, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    EXPECT_EQ(PlaceOf(bar.Get()), (Rect{303, 253, 1097, 285}));
    ShowWindow(parent.Get(), SW_HIDE);
    EXPECT_EQ(IsWindowVisible(bar.Get()), FALSE);
}

TEST_F(BarWindowsTest, WithoutAWindowNothingHappens) {
    FloatBar(nullptr, kFloating);
    DockBar(nullptr, parent.Get());
    EXPECT_EQ(PlaceOf(parent.Get()), kParentRect);
    EXPECT_EQ(GetAncestor(bar.Get(), GA_PARENT), parent.Get());
}

} // namespace
} // namespace brindlecast
