#include "tests/e2e/fixture.h"
#include "tests/e2e/waits.h"

namespace brindlecast::testing {
namespace {

// The play list's window beside the main window.
class PlaylistWindowTest : public ProgramTest {
protected:
    static constexpr UINT kTogglePlaylist = WM_USER + 213;
    static constexpr int kWidth = 420;

    static HWND PlaylistOf(const Player& player) {
        return player.OwnProcess().FindVisibleWindow(L"BrindlecastPlaylist");
    }
    [[nodiscard]] std::optional<std::uint32_t> StoredVisibility() {
        return store.ReadDword(L"PlaylistVisible", TypeCheck::Strict);
    }
    static void ExpectRightOf(const Player& player) {
        const Rect main = ScreenRectOf(player.MainWindow());
        EXPECT_EQ(ScreenRectOf(PlaylistOf(player)),
                  (Rect{main.right, main.top, main.right + kWidth, main.bottom}));
    }
    // Puts the main window where the play list fits beside it.
    static void MakeRoom(const Player& player) {
        SetWindowPos(player.MainWindow(), nullptr, 100, 80, 900, 640, SWP_NOZORDER);
    }
};

TEST_F(PlaylistWindowTest, AFirstStartShowsNone) {
    Player player;
    EXPECT_EQ(PlaylistOf(player), nullptr);
    EXPECT_EQ(StoredVisibility(), std::nullopt);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PlaylistWindowTest, ItComesUpDockedInFrontAndGoesByTheSameMessage) {
    Player player;
    MakeRoom(player);
    player.Activate();
    EXPECT_EQ(player.Send(kTogglePlaylist), 0);
    ASSERT_NE(PlaylistOf(player), nullptr);
    ExpectRightOf(player);
    EXPECT_EQ(GetWindow(PlaylistOf(player), GW_OWNER), player.MainWindow());
    EXPECT_TRUE(WaitUntil(limits::kReaction, "activation",
                          [&] { return GetForegroundWindow() == PlaylistOf(player); }));
    EXPECT_EQ(StoredVisibility(), 1U);
    EXPECT_EQ(player.Send(kTogglePlaylist), 0);
    EXPECT_EQ(PlaylistOf(player), nullptr);
    EXPECT_EQ(StoredVisibility(), 0U);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PlaylistWindowTest, ClosingItHidesItForTheNextStartToo) {
    {
        Player player;
        player.Send(kTogglePlaylist);
        ASSERT_NE(PlaylistOf(player), nullptr);
        PostMessageW(PlaylistOf(player), WM_CLOSE, 0, 0);
        EXPECT_TRUE(WaitUntil(limits::kReaction, "hiding", [&] { return PlaylistOf(player) == nullptr; }));
        EXPECT_TRUE(WaitUntil(limits::kReaction, "storing", [&] { return StoredVisibility() == 0U; }));
        player.Send(kTogglePlaylist);
        EXPECT_NE(PlaylistOf(player), nullptr) << "the window was only hidden";
        player.Send(kTogglePlaylist);
        EXPECT_EQ(player.Close(), 0U);
    }
    Player player;
    EXPECT_EQ(PlaylistOf(player), nullptr);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PlaylistWindowTest, ARestartShowsItWhereAFirstWindowLeavesRoom) {
    {
        Player player;
        MakeRoom(player);
        player.Send(kTogglePlaylist);
        EXPECT_EQ(player.Close(), 0U);
    }
    EXPECT_EQ(StoredVisibility(), 1U);
    Player player;
    ASSERT_NE(PlaylistOf(player), nullptr);
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), (Rect{100, 80, 1000, 720}));
    // It is placed before the main window goes to its stored place. On this screen neither side of a centred
    // window of 1200 pixels has room, so it stands at the left edge and does not follow.
    ASSERT_EQ(GetSystemMetrics(SM_CXSCREEN), 1920);
    EXPECT_EQ(ScreenRectOf(PlaylistOf(player)), (Rect{0, 132, kWidth, 132 + 816}));
    player.Send(kTogglePlaylist);
    player.Send(kTogglePlaylist);
    ExpectRightOf(player);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PlaylistWindowTest, FilmsPlayOnBesideIt) {
    Player player;
    MakeRoom(player);
    ASSERT_TRUE(player.Play(kFilm));
    player.Send(kTogglePlaylist);
    const auto readings = player.Watch(kFilm, std::chrono::milliseconds(1500));
    EXPECT_TRUE(JudgePlayback(readings, kFilm.framesPerSecond, kScreenTolerance).moving);
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
