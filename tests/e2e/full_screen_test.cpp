#include "tests/e2e/full_screen_fixture.h"
#include "tests/e2e/message_picture.h"

#include <array>
#include <optional>

namespace brindlecast::testing {
namespace {

constexpr UINT kTogglePlaylist = 1237;

enum class Way { KeyF, Enter, MiddleButton };
constexpr std::array kWays = {Way::KeyF, Way::Enter, Way::MiddleButton};

class FullScreenWindowTest : public FullScreenTest {
protected:
    static void Toggle(const Player& player, Way way) {
        switch (way) {
        case Way::KeyF: PressKey('F'); break;
        case Way::Enter: PressKey(VK_RETURN); break;
        case Way::MiddleButton: ClickMiddle(MiddleOf(ScreenRectOf(player.VideoWindow()))); break;
        }
    }

    static void ExpectFullScreenWindow(const Player& player) {
        const HWND window = player.MainWindow();
        EXPECT_EQ(ScreenRectOf(window), MonitorOf(window));
        EXPECT_EQ(StyleOf(window) & ~kAddedStyle, 0x90000000U);
        EXPECT_EQ(ExtendedStyleOf(window), DWORD{WS_EX_TOPMOST});
    }
};

TEST_F(FullScreenWindowTest, EachWayTakesTheWholeMonitorAndComesBack) {
    Player player;
    Prepare(player);
    const Shape before(player);
    for (const Way way : kWays) {
        SCOPED_TRACE(static_cast<int>(way));
        Toggle(player, way);
        ASSERT_TRUE(WaitForFull(player));
        ExpectFullScreenWindow(player);
        Toggle(player, way);
        ExpectShape(player, before);
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(FullScreenWindowTest, AFilmPlaysOnInFullScreenAndBehindIt) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    Prepare(player);
    const Shape before(player);
    for (const Way way : kWays) {
        SCOPED_TRACE(static_cast<int>(way));
        Toggle(player, way);
        ASSERT_TRUE(WaitForFull(player));
        ExpectFullScreenWindow(player);
        const std::optional<int> inside = player.WaitForFrame(kFilm);
        ASSERT_TRUE(inside.has_value()) << "the picture fills the monitor";
        Toggle(player, way);
        ExpectShape(player, before);
        EXPECT_TRUE(WaitUntil(limits::kPicture, "the film going on", [&] {
            return player.FrameOnScreen(kFilm).value_or(-1) > *inside;
        })) << "the picture comes back with the window";
    }
    EXPECT_TRUE(player.IsOpen());
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(FullScreenWindowTest, WithoutAFilmNothingButBlackIsOnTheMonitor) {
    Player player;
    Prepare(player);
    Enter(player);
    ASSERT_TRUE(player.WaitUntilNoMessageShows());
    const Rect monitor = MonitorOf(player.MainWindow());
    EXPECT_TRUE(WaitUntil(limits::kReaction, "a black screen", [&] {
        return PhotographScreen(monitor).BlackShare({0, 0, monitor.Width(), monitor.Height()}) == 1.0;
    }));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(FullScreenWindowTest, EscapeLeavesAndOnlyThenMinimises) {
    Player player;
    Prepare(player);
    const Shape before(player);
    Enter(player);
    PressKey(VK_ESCAPE);
    ExpectShape(player, before);
    EXPECT_EQ(IsIconic(player.MainWindow()), FALSE);
    player.Activate();
    PressKey(VK_ESCAPE);
    EXPECT_TRUE(
        WaitUntil(limits::kReaction, "minimising", [&] { return IsIconic(player.MainWindow()) != FALSE; }));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(FullScreenWindowTest, AMaximisedWindowComesBackMaximisedAndKnowsItsNormalPlace) {
    Player player;
    Prepare(player);
    const Shape normal(player);
    for (const WORD leave : {WORD{'F'}, WORD{VK_ESCAPE}}) {
        SCOPED_TRACE(leave);
        player.Send(WM_SYSCOMMAND, SC_MAXIMIZE);
        ASSERT_TRUE(WaitForPlace(player.MainWindow(), WorkAreaOf(player.MainWindow())));
        const Shape maximised(player);
        ASSERT_TRUE(maximised.isMaximised);
        player.Activate();
        Enter(player);
        ExpectFullScreenWindow(player);
        PressKey(leave);
        ExpectShape(player, maximised);
        player.Send(WM_SYSCOMMAND, SC_RESTORE);
        ExpectShape(player, normal);
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(FullScreenWindowTest, ThereIsNoFrameToResizeAndNothingToMove) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    Prepare(player);
    Enter(player);
    const Rect monitor = MonitorOf(player.MainWindow());
    const Point middle = MiddleOf(monitor);
    const Point points[] = {
        {monitor.left, monitor.top},         {middle.x, monitor.top},
        {monitor.right - 1, monitor.top},    {monitor.left, middle.y},
        {monitor.right - 1, middle.y},       {monitor.left, monitor.bottom - 1},
        {middle.x, monitor.bottom - 1},      {monitor.right - 1, monitor.bottom - 1},
        {monitor.left + 5, monitor.top + 5}, middle,
    };
    for (const Point& point : points) {
        EXPECT_EQ(player.Send(WM_NCHITTEST, 0, MAKELPARAM(point.x, point.y)), HTCLIENT)
            << point.x << ", " << point.y;
    }
    for (const Point& grip :
         {Point{monitor.left, middle.y}, Point{monitor.right - 1, middle.y}, Point{middle.x, middle.y}}) {
        Drag(grip, {middle.x + 150, middle.y + 90});
        EXPECT_TRUE(player.Answers());
        EXPECT_EQ(ScreenRectOf(player.MainWindow()), monitor) << "dragged at " << grip.x;
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(FullScreenWindowTest, SizingCommandsChangeNothingButShowTheirMessage) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    Prepare(player);
    const Shape before(player);
    Enter(player);
    ASSERT_TRUE(player.WaitUntilNoMessageShows());
    PressKey('1');
    EXPECT_TRUE(
        WaitUntil(limits::kReaction, "a message", [&] { return VisibleMessageWindow(player) != nullptr; }));
    for (const WORD key : {'2', '3', '4', '5', '6'}) {
        PressKey(key);
    }
    for (const WPARAM command : {5070, 5075, 5080, 5083}) {
        EXPECT_EQ(player.Send(WM_COMMAND, command), 0);
    }
    ExpectFullScreenWindow(player);
    EXPECT_TRUE(IsFull(player));
    PressKey('F');
    ExpectShape(player, before);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(FullScreenWindowTest, TheCursorIsNeverHidden) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    Prepare(player);
    Enter(player);
    for (int look = 0; look < 20; ++look) {
        LetPlay(std::chrono::milliseconds(200));
        ASSERT_NE(CursorOnScreen(), nullptr) << look;
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(FullScreenWindowTest, AnOpenPlaylistComesBackInFront) {
    Player player;
    Prepare(player);
    player.Send(kTogglePlaylist);
    HWND playlist = nullptr;
    ASSERT_TRUE(WaitUntil(limits::kReaction, "the playlist", [&] {
        playlist = player.OwnProcess().FindVisibleWindow(kPlaylistClass);
        return playlist != nullptr;
    }));
    const Rect place = ScreenRectOf(playlist);
    player.Activate();
    Enter(player);
    EXPECT_EQ(IsWindowVisible(playlist), FALSE);
    PressKey('F');
    EXPECT_TRUE(WaitUntil(limits::kReaction, "the playlist in front", [&] {
        return IsWindowVisible(playlist) != FALSE && GetForegroundWindow() == playlist;
    }));
    EXPECT_EQ(ScreenRectOf(playlist), place);
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), kPlace);
    // It is still docked: it goes with the window.
    SetWindowPos(player.MainWindow(), nullptr, kPlace.left - 50, kPlace.top + 70, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_TRUE(
        WaitForPlace(playlist, {place.left - 50, place.top + 70, place.right - 50, place.bottom + 70}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(FullScreenWindowTest, AHiddenPlaylistStaysHidden) {
    Player player;
    Prepare(player);
    const Shape before(player);
    Enter(player);
    PressKey('F');
    ExpectShape(player, before);
    EXPECT_EQ(player.OwnProcess().FindVisibleWindow(kPlaylistClass), nullptr);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(FullScreenWindowTest, ClosingInFullScreenKeepsThePlaceOfTheLastTime) {
    store.WriteDword(L"WindowX", 210);
    store.WriteDword(L"WindowY", 160);
    store.WriteDword(L"WindowW", 910);
    store.WriteDword(L"WindowH", 650);
    Player player;
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), (Rect{210, 160, 1120, 810}));
    Prepare(player);
    Enter(player);
    EXPECT_EQ(player.Close(), 0U);
    EXPECT_EQ(store.ReadDword(L"WindowX", TypeCheck::Strict), 210U);
    EXPECT_EQ(store.ReadDword(L"WindowY", TypeCheck::Strict), 160U);
    EXPECT_EQ(store.ReadDword(L"WindowW", TypeCheck::Strict), 910U);
    EXPECT_EQ(store.ReadDword(L"WindowH", TypeCheck::Strict), 650U);
    EXPECT_EQ(store.ReadDword(L"WindowMaximized", TypeCheck::Strict), 0U);
}

} // namespace
} // namespace brindlecast::testing
