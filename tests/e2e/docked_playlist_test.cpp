#include "base/win32/geometry.h"
#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/window_state.h"

namespace brindlecast::testing {

namespace {

constexpr UINT kTogglePlaylist = WM_USER + 213;
constexpr UINT kPlaylistHidden = WM_USER + 222;
constexpr int kWidth = 420;

// With room for the list on both sides.
constexpr Rect kMiddle{500, 120, 1300, 720};

Rect RightOf(const Rect& window, int width = kWidth) {
    return {window.right, window.top, window.right + width, window.bottom};
}
Rect LeftOf(const Rect& window, int width = kWidth) {
    return {window.left - width, window.top, window.left, window.bottom};
}
Rect Moved(const Rect& rect, int right, int down) {
    return {rect.left + right, rect.top + down, rect.right + right, rect.bottom + down};
}

// The play list's window and how it keeps to the main window.
class DockedPlaylistTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        workArea = WorkAreaOf(GetDesktopWindow());
        ASSERT_GE(workArea.Width(), 1900);
    }

    static HWND PlaylistOf(const Player& player) {
        return player.OwnProcess().FindVisibleWindow(kPlaylistClass);
    }
    static void Place(HWND window, const Rect& place) {
        EXPECT_TRUE(PutAt(window, place)) << TextOf(ScreenRectOf(window)) << " and not " << TextOf(place);
    }
    static void ExpectPlace(HWND window, const Rect& place) {
        EXPECT_TRUE(WaitForPlace(window, place))
            << TextOf(ScreenRectOf(window)) << " and not " << TextOf(place);
    }
    // The window shown beside the main window, which stands at that place.
    static HWND ShowBeside(Player& player, const Rect& place) {
        player.Activate();
        Place(player.MainWindow(), place);
        EXPECT_EQ(player.Send(kTogglePlaylist), 0);
        const HWND playlist = PlaylistOf(player);
        EXPECT_NE(playlist, nullptr);
        EXPECT_TRUE(WaitUntil(limits::kReaction, "the list in front",
                              [&] { return GetForegroundWindow() == playlist; }));
        return playlist;
    }
    // On the left of the main window, which stands in the middle then.
    HWND ShowLeft(Player& player) const {
        const HWND playlist = ShowBeside(player, {workArea.right - 800, 100, workArea.right, 700});
        Place(player.MainWindow(), kMiddle);
        ExpectPlace(playlist, LeftOf(kMiddle));
        return playlist;
    }

    // Has the main window told that it is held at the cursor.
    static void BeginMoving(const Player& player) { EXPECT_EQ(player.Send(WM_ENTERSIZEMOVE), 0); }
    // Where the main window would go, were it dragged so far; it stays where it is.
    static Rect PlaceWhileMoving(const Player& player, const Rect& proposed) {
        RECT place = ToRect(proposed);
        EXPECT_TRUE(player.Send(WM_MOVING, 0, reinterpret_cast<LPARAM>(&place)).has_value());
        return FromRect(place);
    }
    // Drags the main window by a place in the picture, each time by another one: two presses on one place
    // would be a double click.
    void DragMainWindow(const Player& player, int right, int down) {
        const Rect before = ScreenRectOf(player.MainWindow());
        {
            const HeldDrag held(player.MainWindow(), {before.left + 200 + 20 * drags++, before.top + 300});
            ASSERT_TRUE(held.Started());
            held.MoveBy({right / 2, down / 2});
            held.MoveBy({right, down});
        }
        ExpectPlace(player.MainWindow(), Moved(before, right, down));
    }

    [[nodiscard]] std::optional<std::uint32_t> StoredVisibility() {
        return store.ReadDword(L"PlaylistVisible", TypeCheck::Strict);
    }

    Rect workArea;
    int drags = 0;
};

TEST_F(DockedPlaylistTest, ItStandsAtTheRightWhereItFitsAndElseAtTheLeft) {
    Player player;
    const Rect fits{workArea.right - kWidth - 800, 60, workArea.right - kWidth, 660};
    HWND playlist = ShowBeside(player, fits);
    ExpectPlace(playlist, RightOf(fits));
    EXPECT_EQ(player.Send(kTogglePlaylist), 0);
    playlist = ShowBeside(player, Moved(fits, 1, 0));
    ExpectPlace(playlist, LeftOf(Moved(fits, 1, 0)));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DockedPlaylistTest, WithoutRoomItStandsAtTheEdgeAndDoesNotFollow) {
    Player player;
    const Rect wide{workArea.left + 400, 60, workArea.right - 400, 660};
    const HWND playlist = ShowBeside(player, wide);
    const Rect edge{workArea.left, 60, workArea.left + kWidth, 660};
    ExpectPlace(playlist, edge);
    Place(player.MainWindow(), {600, 200, 1400, 800});
    DragMainWindow(player, 40, 30);
    EXPECT_EQ(ScreenRectOf(playlist), edge);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DockedPlaylistTest, ItFollowsTheSizeOfTheMainWindowAndKeepsItsWidth) {
    Player player;
    // The corner stays: of this alone nobody is told as of a move.
    const Rect other{kMiddle.left, kMiddle.top, kMiddle.right - 90, kMiddle.bottom + 55};
    HWND playlist = ShowBeside(player, kMiddle);
    Place(player.MainWindow(), other);
    ExpectPlace(playlist, RightOf(other));
    Place(playlist, RightOf(other, 333));
    Place(player.MainWindow(), kMiddle);
    ExpectPlace(playlist, RightOf(kMiddle, 333));
    EXPECT_EQ(player.Send(kTogglePlaylist), 0);
    playlist = ShowLeft(player);
    Place(player.MainWindow(), other);
    ExpectPlace(playlist, LeftOf(other));
    Place(playlist, LeftOf(other, 333));
    Place(player.MainWindow(), kMiddle);
    ExpectPlace(playlist, LeftOf(kMiddle, 333));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DockedPlaylistTest, ItIsInItsPlaceAgainAfterTheMainWindowWasMinimised) {
    Player player;
    const HWND playlist = ShowBeside(player, kMiddle);
    ShowWindow(player.MainWindow(), SW_MINIMIZE);
    ASSERT_TRUE(
        WaitUntil(limits::kReaction, "minimising", [&] { return IsIconic(player.MainWindow()) != FALSE; }));
    ShowWindow(player.MainWindow(), SW_RESTORE);
    ExpectPlace(player.MainWindow(), kMiddle);
    ExpectPlace(playlist, RightOf(kMiddle));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DockedPlaylistTest, ItGoesWhereTheMainWindowGoes) {
    Player player;
    const Rect lower = Moved(kMiddle, -60, 150);
    HWND playlist = ShowBeside(player, kMiddle);
    Place(player.MainWindow(), lower);
    ExpectPlace(playlist, RightOf(lower));
    EXPECT_EQ(player.Send(kTogglePlaylist), 0);
    playlist = ShowLeft(player);
    Place(player.MainWindow(), lower);
    ExpectPlace(playlist, LeftOf(lower));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DockedPlaylistTest, AHiddenListIsNotPlaced) {
    Player player;
    const HWND playlist = ShowBeside(player, kMiddle);
    EXPECT_EQ(player.Send(kTogglePlaylist), 0);
    Place(player.MainWindow(), Moved(kMiddle, 30, 40));
    EXPECT_TRUE(player.Answers());
    EXPECT_EQ(ScreenRectOf(playlist), RightOf(kMiddle));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DockedPlaylistTest, WithSnappingItGoesBeforeTheMainWindowDoes) {
    Player player;
    const HWND playlist = ShowBeside(player, kMiddle);
    Place(playlist, RightOf(kMiddle, 333));
    MoveCursor({800, 400});
    BeginMoving(player);
    MoveCursor({870, 350});
    EXPECT_EQ(PlaceWhileMoving(player, kMiddle), Moved(kMiddle, 70, -50));
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), kMiddle);
    EXPECT_EQ(ScreenRectOf(playlist), Moved(RightOf(kMiddle, 333), 70, -50));
    // To the edge at which the main window snaps, by as much as that goes.
    Place(playlist, RightOf(kMiddle));
    MoveCursor({800, 400 - 120 + 9});
    EXPECT_EQ(PlaceWhileMoving(player, kMiddle), Moved(kMiddle, 0, -120));
    EXPECT_EQ(ScreenRectOf(playlist), Moved(RightOf(kMiddle), 0, -120));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DockedPlaylistTest, WithoutSnappingItGoesOnlyAfterTheMainWindow) {
    store.WriteDword(L"MagnetDistance", 0);
    Player player;
    const HWND playlist = ShowBeside(player, kMiddle);
    MoveCursor({800, 400});
    BeginMoving(player);
    MoveCursor({870, 350});
    const Rect proposed = Moved(kMiddle, 70, -50);
    EXPECT_EQ(PlaceWhileMoving(player, proposed), proposed);
    EXPECT_EQ(ScreenRectOf(playlist), RightOf(kMiddle));
    Place(player.MainWindow(), proposed);
    ExpectPlace(playlist, RightOf(proposed));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DockedPlaylistTest, ADragTakesItAlongWithAndWithoutSnapping) {
    for (const std::uint32_t distance : {10U, 0U}) {
        SCOPED_TRACE(distance);
        store.WriteDword(L"MagnetDistance", distance);
        store.WriteDword(L"PlaylistVisible", 0);
        Player player;
        HWND playlist = ShowBeside(player, kMiddle);
        DragMainWindow(player, -90, 70);
        ExpectPlace(playlist, RightOf(Moved(kMiddle, -90, 70)));
        EXPECT_EQ(player.Send(kTogglePlaylist), 0);
        playlist = ShowLeft(player);
        DragMainWindow(player, 60, -40);
        ExpectPlace(playlist, LeftOf(Moved(kMiddle, 60, -40)));
        EXPECT_EQ(player.Close(), 0U);
    }
}

TEST_F(DockedPlaylistTest, AtTheStartOfADragItIsMeasuredWhetherItTouches) {
    for (const std::uint32_t distance : {10U, 0U}) {
        SCOPED_TRACE(distance);
        store.WriteDword(L"MagnetDistance", distance);
        store.WriteDword(L"PlaylistVisible", 0);
        Player player;
        const HWND playlist = ShowBeside(player, kMiddle);
        Rect main = kMiddle;
        const auto drag = [&](int right, int down) {
            DragMainWindow(player, right, down);
            main = Moved(main, right, down);
        };
        // Five pixels are apart.
        const Rect apart = Moved(RightOf(main), 5, 0);
        Place(playlist, apart);
        drag(-40, 30);
        EXPECT_EQ(ScreenRectOf(playlist), apart);
        // Four are not, on either side.
        Place(playlist, Moved(RightOf(main), 4, -4));
        drag(-20, -20);
        ExpectPlace(playlist, RightOf(main));
        Place(playlist, Moved(LeftOf(main, 400), -4, 4));
        drag(30, 10);
        ExpectPlace(playlist, LeftOf(main, 400));
        // Too high, though it touches.
        const Rect higher = Moved(LeftOf(main), 0, -5);
        Place(playlist, higher);
        drag(10, 20);
        EXPECT_EQ(ScreenRectOf(playlist), higher);
        EXPECT_EQ(player.Close(), 0U);
    }
}

TEST_F(DockedPlaylistTest, FullScreenHidesItAndBringsItBackDockedAndInFront) {
    Player player;
    const HWND playlist = ShowLeft(player);
    MoveCursor({960, 540});
    player.Activate();
    PressKey('F');
    ASSERT_TRUE(WaitUntil(limits::kReaction, "full screen", [&] {
        return ScreenRectOf(player.VideoWindow()).Width() == GetSystemMetrics(SM_CXSCREEN);
    }));
    EXPECT_TRUE(player.Answers());
    EXPECT_EQ(PlaylistOf(player), nullptr);
    PressKey(VK_ESCAPE);
    ASSERT_TRUE(WaitUntil(limits::kReaction, "the list in front", [&] {
        return PlaylistOf(player) == playlist && GetForegroundWindow() == playlist;
    }));
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), kMiddle);
    EXPECT_EQ(ScreenRectOf(playlist), LeftOf(kMiddle));
    Place(player.MainWindow(), Moved(kMiddle, 30, 50));
    ExpectPlace(playlist, LeftOf(Moved(kMiddle, 30, 50)));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DockedPlaylistTest, AListThatStoodApartComesBackFromFullScreenWhereItStood) {
    Player player;
    const HWND playlist = ShowBeside(player, kMiddle);
    const Rect apart{1350, 300, 1800, 900};
    Place(playlist, apart);
    DragMainWindow(player, 20, 20);
    MoveCursor({960, 540});
    player.Activate();
    PressKey('F');
    ASSERT_TRUE(WaitUntil(limits::kReaction, "hiding", [&] { return PlaylistOf(player) == nullptr; }));
    PressKey('F');
    ASSERT_TRUE(WaitUntil(limits::kReaction, "showing", [&] { return PlaylistOf(player) == playlist; }));
    EXPECT_TRUE(player.Answers());
    EXPECT_EQ(ScreenRectOf(playlist), apart);
    Place(player.MainWindow(), kMiddle);
    EXPECT_EQ(ScreenRectOf(playlist), apart);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(DockedPlaylistTest, WhetherItShowsIsStoredAtEachTurnAndWhenItHidesItself) {
    Player player;
    EXPECT_EQ(StoredVisibility(), std::nullopt);
    for (const std::uint32_t shown : {1U, 0U, 1U}) {
        EXPECT_EQ(player.Send(kTogglePlaylist), 0);
        EXPECT_EQ(StoredVisibility(), shown);
        EXPECT_EQ(PlaylistOf(player) != nullptr, shown == 1U);
    }
    EXPECT_EQ(player.Send(kPlaylistHidden), 0);
    EXPECT_EQ(StoredVisibility(), 0U);
    EXPECT_NE(PlaylistOf(player), nullptr) << "whoever sends this has hidden it";
    EXPECT_EQ(player.Close(), 0U);
    EXPECT_EQ(StoredVisibility(), 0U);
}

TEST_F(DockedPlaylistTest, TheStoredValueIsObeyedAtTheStart) {
    for (const std::uint32_t value : {0U, 1U, 5U}) {
        SCOPED_TRACE(value);
        store.WriteDword(L"PlaylistVisible", value);
        Player player;
        EXPECT_EQ(PlaylistOf(player) != nullptr, value != 0);
        EXPECT_EQ(player.Close(), 0U);
        EXPECT_EQ(StoredVisibility(), value) << "neither start nor end write it";
    }
}

TEST_F(DockedPlaylistTest, WithTheListInFrontNoKeyIsACommand) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    ShowBeside(player, kMiddle);
    PressKey(VK_SPACE);
    PressKey(VK_DOWN);
    PressKey('F');
    ASSERT_TRUE(player.Answers());
    const auto before = player.WaitForFrame(kFilm);
    ASSERT_TRUE(before.has_value());
    EXPECT_TRUE(WaitUntil(limits::kReaction, "the film going on",
                          [&] { return player.FrameOnScreen(kFilm).value_or(0) > *before + 12; }));
    EXPECT_EQ(store.ReadDword(L"Volume", TypeCheck::Strict), 100U);
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), kMiddle);
    player.Activate();
    PressKey(VK_DOWN);
    PressKey(VK_SPACE);
    EXPECT_TRUE(player.WaitForStandstill(kFilm).has_value()) << "the same key acts in the main window";
    EXPECT_EQ(store.ReadDword(L"Volume", TypeCheck::Strict), 95U);
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
