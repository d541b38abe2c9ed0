#include "tests/unit/windows/video_window_fixture.h"

#include "ui/messages.h"

#include <optional>

namespace brindlecast::testing {
namespace {

// The place in screen coordinates that the video window has in the owner.
constexpr Rect kOnScreen{203, 185, 597, 387};

TEST_F(VideoWindowTest, ItIsAVisibleChildOfAClassOfItsOwn) {
    VideoWindow fresh;
    EXPECT_EQ(fresh.Handle(), nullptr);
    EXPECT_TRUE(fresh.idle);
    ASSERT_TRUE(fresh.Create(GetModuleHandleW(nullptr), owner.Handle()));
    const HWND window = fresh.Handle();
    EXPECT_EQ(static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)), 0x56000000U);
    EXPECT_EQ(GetWindowLongPtrW(window, GWL_EXSTYLE), 0);
    EXPECT_EQ(GetParent(window), owner.Handle());
    std::array<wchar_t, 64> name{};
    GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    EXPECT_STREQ(name.data(), L"BrindlecastVideoWindow");
    EXPECT_EQ(GetClassLongPtrW(window, GCL_STYLE), 11U);
    EXPECT_EQ(GetClassLongPtrW(window, GCLP_HBRBACKGROUND), 0U);
    EXPECT_EQ(reinterpret_cast<HCURSOR>(GetClassLongPtrW(window, GCLP_HCURSOR)), SystemCursor(IDC_ARROW));
    RECT place{};
    GetWindowRect(window, &place);
    EXPECT_EQ(FromRect(place), (Rect{200, 150, 300, 250}));
}

TEST_F(VideoWindowTest, WithoutAnOwnerThereIsNone) {
    VideoWindow alone;
    EXPECT_FALSE(alone.Create(GetModuleHandleW(nullptr), nullptr));
    EXPECT_EQ(alone.Handle(), nullptr);
}

TEST_F(VideoWindowTest, ItIsPaintedBlackAndErasesNothing) {
    const HDC context = GetDC(video.Handle());
    const RECT all{0, 0, kVideoPlace.Width(), kVideoPlace.Height()};
    const POINT corners[] = {{0, 0}, {393, 0}, {0, 201}, {393, 201}, {200, 100}};
    FillRect(context, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    EXPECT_EQ(Send(WM_ERASEBKGND, reinterpret_cast<WPARAM>(context), 0), 1);
    for (const POINT& point : corners) {
        EXPECT_EQ(GetPixel(context, point.x, point.y), RGB(255, 255, 255)) << point.x << ", " << point.y;
    }
    InvalidateRect(video.Handle(), nullptr, TRUE);
    UpdateWindow(video.Handle());
    for (const POINT& point : corners) {
        EXPECT_EQ(GetPixel(context, point.x, point.y), RGB(0, 0, 0)) << point.x << ", " << point.y;
    }
    ReleaseDC(video.Handle(), context);
    EXPECT_EQ(GetUpdateRect(video.Handle(), nullptr, FALSE), FALSE) << "the painting must come to its end";
}

TEST_F(VideoWindowTest, TheCursorGoesByTheHitTestCodeAndIsElseTheArrow) {
    const auto expected = [](int code) {
        switch (code) {
        case 10:
        case 11: return SystemCursor(IDC_SIZEWE); // left, right
        case 12:
        case 15: return SystemCursor(IDC_SIZENS); // top, bottom
        case 13:
        case 17: return SystemCursor(IDC_SIZENWSE); // top left, bottom right
        case 14:
        case 16: return SystemCursor(IDC_SIZENESW); // top right, bottom left
        default: return SystemCursor(IDC_ARROW);
        }
    };
    for (int code = -2; code <= 21; ++code) {
        LRESULT answer = 0;
        const HCURSOR set = CursorSetBy([&] {
            answer =
                Send(WM_SETCURSOR, reinterpret_cast<WPARAM>(video.Handle()), MAKELPARAM(code, WM_MOUSEMOVE));
        });
        EXPECT_EQ(set, expected(code)) << code;
        EXPECT_EQ(answer, 1) << code;
    }
    EXPECT_TRUE(owner.Take().empty()) << "the owner has no say in it";
}

TEST_F(VideoWindowTest, HitsNearTheOwnersOuterEdgeFallThroughToIt) {
    // All of the owner, as nothing else of it could be hit.
    MoveVideo({0, 0, kOwnerPlace.Width(), kOwnerPlace.Height()});
    const auto hit = [this](int x, int y) {
        return Send(WM_NCHITTEST, 0, PackedPoint(x, y));
    };
    for (const auto& [x, y] :
         {std::pair(200, 300), std::pair(205, 300), std::pair(595, 300), std::pair(599, 300),
          std::pair(400, 150), std::pair(400, 155), std::pair(400, 445), std::pair(400, 449),
          std::pair(205, 155), std::pair(595, 155), std::pair(205, 445), std::pair(595, 445)}) {
        EXPECT_EQ(hit(x, y), HTTRANSPARENT) << x << ", " << y;
    }
    for (const auto& [x, y] : {std::pair(206, 300), std::pair(594, 300), std::pair(400, 156),
                               std::pair(400, 444), std::pair(206, 156), std::pair(594, 444)}) {
        EXPECT_EQ(hit(x, y), HTCLIENT) << x << ", " << y;
    }
}

TEST_F(VideoWindowTest, TheBandIsTheOwnersAndNotThatOfTheVideo) {
    const auto hit = [this](int x, int y) {
        return Send(WM_NCHITTEST, 0, PackedPoint(x, y));
    };
    EXPECT_EQ(hit(kOnScreen.left, 300), HTTRANSPARENT);
    EXPECT_EQ(hit(kOnScreen.left + 3, 300), HTCLIENT);
    EXPECT_EQ(hit(400, kOnScreen.top), HTCLIENT);
    EXPECT_EQ(hit(400, kOnScreen.bottom - 1), HTCLIENT);
}

TEST_F(VideoWindowTest, TheBandIsScaledAndReachesBeyondTheScreensEdge) {
    SetSystemDpi(144);
    PlaceOwner({-100, -80, 300, 220});
    MoveVideo({0, 0, 400, 300});
    const auto hit = [this](int x, int y) {
        return Send(WM_NCHITTEST, 0, PackedPoint(x, y));
    };
    EXPECT_EQ(hit(-92, 50), HTTRANSPARENT);
    EXPECT_EQ(hit(-91, 50), HTCLIENT);
    EXPECT_EQ(hit(50, -72), HTTRANSPARENT);
    EXPECT_EQ(hit(50, -71), HTCLIENT);
    EXPECT_EQ(hit(291, 50), HTCLIENT);
    EXPECT_EQ(hit(292, 50), HTTRANSPARENT);
}

TEST_F(VideoWindowTest, MovesAndRightClicksReachTheOwnerAtItsOwnPoint) {
    for (const UINT message : {WM_MOUSEMOVE, WM_RBUTTONUP}) {
        EXPECT_EQ(Send(message, MK_CONTROL, PackedPoint(10, 20)), RecordingWindow::kAnswer);
        EXPECT_EQ(owner.Take(), (std::vector<Received>{{message, MK_CONTROL, PackedPoint(13, 55)}}));
        // Left of and above the window, as while the mouse is captured.
        EXPECT_EQ(Send(message, 0, PackedPoint(-10, -40)), RecordingWindow::kAnswer);
        EXPECT_EQ(owner.Take(), (std::vector<Received>{{message, 0, PackedPoint(-7, -5)}}));
    }
}

TEST_F(VideoWindowTest, TheMiddleButtonTheWheelAndKeysReachTheOwnerAsTheyAre) {
    for (const UINT message : {WM_MBUTTONDOWN, WM_MOUSEWHEEL, WM_KEYDOWN, WM_KEYUP, WM_CHAR, WM_DEADCHAR,
                               WM_SYSKEYDOWN, WM_SYSKEYUP, WM_SYSCHAR, WM_SYSDEADCHAR}) {
        const WPARAM wParam = MAKEWPARAM(0x4D, static_cast<WORD>(-120));
        EXPECT_EQ(Send(message, wParam, 0x00320001), RecordingWindow::kAnswer) << message;
        EXPECT_EQ(owner.Take(), (std::vector<Received>{{message, wParam, 0x00320001}}));
    }
}

TEST_F(VideoWindowTest, OtherMessagesStayWithTheWindow) {
    for (const UINT message : {WM_LBUTTONUP, WM_RBUTTONDOWN, WM_MBUTTONUP}) {
        Send(message, 0, PackedPoint(10, 20));
        EXPECT_TRUE(owner.Take().empty()) << message;
    }
}

// Presses of the left button at the cursor.
class VideoWindowPressTest : public VideoWindowTest {
protected:
    void Press() { EXPECT_EQ(Send(WM_LBUTTONDOWN, MK_LBUTTON, PackedPoint(100, 100)), 0); }
    void PressAfter(DWORD milliseconds) {
        toldTick += milliseconds;
        Press();
    }
    // How often the owner was sent the wish to play or pause, and nothing else, since it was asked last.
    int TimesToggled() {
        const std::vector<Received> sent = owner.Take();
        for (const Received& message : sent) {
            EXPECT_EQ(message, (Received{1224, 0, 0}));
        }
        return static_cast<int>(sent.size());
    }
    // What was posted to the owner of a press on its caption.
    [[nodiscard]] std::optional<Received> PostedPress() const {
        MSG posted{};
        if (PeekMessageW(&posted, owner.Handle(), WM_NCLBUTTONDOWN, WM_NCLBUTTONDOWN, PM_REMOVE) == FALSE) {
            return std::nullopt;
        }
        return Received{posted.message, posted.wParam, posted.lParam};
    }
    void GiveOwnerAThickFrame() const {
        SetWindowLongPtrW(owner.Handle(), GWL_STYLE, WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN | WS_THICKFRAME);
    }

    DWORD limit = GetDoubleClickTime();
    int width = GetSystemMetrics(SM_CXDOUBLECLK);
    int height = GetSystemMetrics(SM_CYDOUBLECLK);
};

TEST_F(VideoWindowPressTest, TwoPressesInTimeToggleOnce) {
    Press();
    EXPECT_EQ(TimesToggled(), 0);
    PressAfter(limit - 1);
    EXPECT_EQ(TimesToggled(), 1);
}

TEST_F(VideoWindowPressTest, AThirdPressRightAfterIsAFirstOneAgain) {
    Press();
    PressAfter(10);
    EXPECT_EQ(TimesToggled(), 1);
    PressAfter(10);
    EXPECT_EQ(TimesToggled(), 0);
    PressAfter(10);
    EXPECT_EQ(TimesToggled(), 1);
}

TEST_F(VideoWindowPressTest, ALatePressIsAFirstOne) {
    Press();
    PressAfter(limit);
    EXPECT_EQ(TimesToggled(), 0);
    PressAfter(limit - 1);
    EXPECT_EQ(TimesToggled(), 1) << "it is timed from the press before";
}

TEST_F(VideoWindowPressTest, AFarPressIsAFirstOne) {
    Press();
    toldCursor = {400 + width, 300};
    PressAfter(1);
    EXPECT_EQ(TimesToggled(), 0);
    toldCursor.y -= height;
    PressAfter(1);
    EXPECT_EQ(TimesToggled(), 0);
    toldCursor = {toldCursor.x - (width - 1), toldCursor.y + (height - 1)};
    PressAfter(1);
    EXPECT_EQ(TimesToggled(), 1) << "it is measured from the press before";
}

TEST_F(VideoWindowPressTest, TheSystemsDoubleClickTogglesOnceToo) {
    Press();
    toldTick += 10;
    EXPECT_EQ(Send(WM_LBUTTONDBLCLK, MK_LBUTTON, PackedPoint(100, 100)), 0);
    EXPECT_EQ(TimesToggled(), 1);
    PressAfter(10);
    EXPECT_EQ(TimesToggled(), 0) << "a third press does not count again";
}

TEST_F(VideoWindowPressTest, WithoutAThickFrameTheOwnerDoesNotMove) {
    SetCapture(video.Handle());
    Press();
    EXPECT_EQ(PostedPress(), std::nullopt);
    EXPECT_TRUE(owner.Take().empty());
    EXPECT_EQ(GetCapture(), video.Handle());
    ReleaseCapture();
}

TEST_F(VideoWindowPressTest, APressOnAThickFramedOwnerIsPostedAsOneOnItsCaption) {
    GiveOwnerAThickFrame();
    SetCapture(video.Handle());
    Press();
    EXPECT_TRUE(owner.Take().empty()) << "it must not be sent";
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(PostedPress(), (Received{WM_NCLBUTTONDOWN, 2, PackedPoint(400, 300)}));
    EXPECT_EQ(PostedPress(), std::nullopt);
    // On a screen left of and above the first one.
    toldCursor = {-1200, -30};
    Press();
    EXPECT_EQ(PostedPress(), (Received{WM_NCLBUTTONDOWN, 2, PackedPoint(-1200, -30)}));
}

TEST_F(VideoWindowPressTest, ADoubleClickDoesNotMoveTheOwner) {
    GiveOwnerAThickFrame();
    Press();
    EXPECT_NE(PostedPress(), std::nullopt);
    PressAfter(10);
    EXPECT_EQ(TimesToggled(), 1);
    EXPECT_EQ(PostedPress(), std::nullopt);
}

} // namespace
} // namespace brindlecast::testing
