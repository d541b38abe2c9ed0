#include "base/win32/unique_handle.h"
#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/window_state.h"
#include "ui/messages.h"

namespace brindlecast::testing {
namespace {

class WindowTest : public ProgramTest {};

Point MiddleOf(const Rect& rect) {
    return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

TEST_F(WindowTest, AFirstWindowIsCentredBlackAndFrameless) {
    Player player;
    const Rect window = ScreenRectOf(player.MainWindow());
    EXPECT_EQ(window.Width(), 1200);
    EXPECT_EQ(window.Height(), 816);
    EXPECT_EQ(window.left, (GetSystemMetrics(SM_CXSCREEN) - 1200) / 2);
    EXPECT_EQ(window.top, (GetSystemMetrics(SM_CYSCREEN) - 816) / 2);
    EXPECT_TRUE(WaitUntil(limits::kReaction, "painting", [&] {
        return PhotographScreen(window).BlackShare({0, 0, window.Width(), window.Height()}) == 1.0;
    }));
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(player.MainWindow(), GWL_STYLE));
    EXPECT_EQ(style & 0x82070000, 0x82070000);
    const Rect video = ScreenRectOf(player.VideoWindow());
    EXPECT_EQ(video, (Rect{window.left + 3, window.top + 35, window.right - 3, window.bottom - 63}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowTest, ADrawnEdgeResizesAndThePictureKeepsItsShape) {
    Player player;
    player.Drop({Media(kFilm.name)});
    ASSERT_TRUE(player.WaitForFrame(kFilm).has_value());
    const Rect window = ScreenRectOf(player.MainWindow());
    {
        const HeldDrag drag(player.MainWindow(), {window.right - 2, MiddleOf(window).y});
        ASSERT_TRUE(drag.Started());
        drag.MoveBy({-400, 0});
        ASSERT_TRUE(
            WaitForPlace(player.MainWindow(), {window.left, window.top, window.right - 400, window.bottom}));
    }
    ASSERT_TRUE(player.WaitForFrame(kFilm).has_value()) << "the mark must stand where the shape puts it";
    const Rect video = ScreenRectOf(player.VideoWindow());
    ASSERT_TRUE(player.WaitUntilNoMessageShows());
    const Rect picture = player.PictureOnScreen(kFilm);
    ASSERT_GT(picture.top, video.top + 50) << "a narrow window has bars above and below";
    EXPECT_NEAR(picture.Width() * 9.0 / 16.0, picture.Height(), 1.0);
    const Photograph photograph = PhotographScreen(video);
    EXPECT_GT(photograph.BlackShare({0, 0, video.Width(), picture.top - video.top - 1}), 0.999);
    EXPECT_GT(photograph.BlackShare({0, picture.bottom - video.top + 1, video.Width(), video.Height()}),
              0.999);
    EXPECT_LT(photograph.BlackShare({0, picture.top - video.top, video.Width(), picture.bottom - video.top}),
              0.8);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowTest, AnamorphicAndTurnedFilmsStandUprightInTheirShape) {
    Player player;
    for (const Film& film : {kAnamorphicFilm, kRotatedFilm}) {
        ASSERT_TRUE(player.Play(film)) << "the mark must stand where the shape puts it";
        const Rect video = ScreenRectOf(player.VideoWindow());
        const auto colours =
            ReadColourPatches(PhotographScreen(video).View(),
                              FitPicture({0, 0, video.Width(), video.Height()}, film.width, film.height));
        ASSERT_TRUE(colours.has_value());
        EXPECT_LE(LargestPatchError(*colours), 8);
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowTest, TheWindowDoesNotGetSmallerThanItsLeastSize) {
    Player player;
    SetWindowPos(player.MainWindow(), nullptr, 300, 300, 50, 40, SWP_NOZORDER);
    const Rect window = ScreenRectOf(player.MainWindow());
    EXPECT_EQ(window.Width(), 200);
    EXPECT_EQ(window.Height(), 100);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowTest, AStoredPlaceOnNoMonitorIsCentred) {
    store.WriteDword(L"WindowX", static_cast<std::uint32_t>(-10000));
    store.WriteDword(L"WindowY", 0);
    store.WriteDword(L"WindowW", 800);
    store.WriteDword(L"WindowH", 600);
    Player player;
    const int x = (GetSystemMetrics(SM_CXSCREEN) - 800) / 2;
    const int y = (GetSystemMetrics(SM_CYSCREEN) - 600) / 2;
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), (Rect{x, y, x + 800, y + 600}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowTest, EscapeMinimises) {
    Player player;
    player.Activate();
    PressKey(VK_ESCAPE);
    EXPECT_TRUE(
        WaitUntil(limits::kReaction, "minimising", [&] { return IsIconic(player.MainWindow()) != FALSE; }));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowTest, ADoubleClickTogglesOnceAndAThirdPressDoesNotCount) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Activate();
    const Rect before = ScreenRectOf(player.MainWindow());
    const Point middle = MiddleOf(ScreenRectOf(player.VideoWindow()));
    DoubleClick(middle);
    Click(middle);
    EXPECT_TRUE(player.WaitForStandstill(kFilm).has_value()) << "paused once, and not played on by the third";
    EXPECT_TRUE(player.IsOpen());
    LetPlay(std::chrono::milliseconds(GetDoubleClickTime() + 100));
    Click(middle);
    EXPECT_TRUE(player.WaitForStandstill(kFilm).has_value()) << "one press alone changes nothing";
    LetPlay(std::chrono::milliseconds(GetDoubleClickTime() + 100));
    const std::optional<int> paused = player.FrameOnScreen(kFilm);
    ASSERT_TRUE(paused.has_value());
    DoubleClick(middle);
    EXPECT_TRUE(WaitUntil(limits::kReaction, "playing on",
                          [&] { return player.FrameOnScreen(kFilm).value_or(0) > *paused + 5; }));
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), before) << "presses without a move leave the window";
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowTest, KeysActOnlyWhileTheMainWindowIsInFront) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    const UniqueHwnd other(CreateWindowExW(0, L"STATIC", L"other", WS_POPUP | WS_VISIBLE, 0, 0, 100, 100,
                                           nullptr, nullptr, nullptr, nullptr));
    SetForegroundWindow(other.Get());
    ASSERT_TRUE(
        WaitUntil(limits::kReaction, "other window", [&] { return GetForegroundWindow() == other.Get(); }));
    // Posted, so that the key reaches the main window although it is not in front.
    PostMessageW(player.MainWindow(), WM_KEYDOWN, VK_SPACE, 0x00390001);
    // What was posted after the key has acted, so the key had its chance.
    PostMessageW(player.MainWindow(), kMessageSetVolume, 37, 0);
    ASSERT_TRUE(WaitUntil(limits::kReaction, "volume",
                          [&] { return store.ReadDword(L"Volume", TypeCheck::Strict) == 37U; }));
    const std::optional<int> before = player.FrameOnScreen(kFilm);
    ASSERT_TRUE(before.has_value());
    EXPECT_TRUE(WaitUntil(limits::kReaction, "the film going on", [&] {
        return player.FrameOnScreen(kFilm).value_or(0) > *before + 12;
    })) << "a key that came while another window was in front paused the film";
    player.Activate();
    PostMessageW(player.MainWindow(), WM_KEYDOWN, VK_SPACE, 0x00390001);
    EXPECT_TRUE(player.WaitForStandstill(kFilm).has_value()) << "the same key in front must pause";
    EXPECT_TRUE(player.IsOpen());
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
