#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/message_picture.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/window_state.h"

namespace brindlecast::testing {
namespace {

constexpr Film kLargeFilm{L"film_1080p.mkv", 1920, 1080, 24.0};
constexpr Rect kPlace{300, 200, 1100, 800}; // its middle is 700, 500

// A key or a command, what it shows, and where the window that stood at kPlace then stands.
struct Sizing {
    WPARAM trigger;
    const wchar_t* message;
    Rect expected;
};

// For a film of 320 by 180. The frame takes 6 pixels of the width, frame and bars 98 of the height; no window
// gets narrower than 200.
constexpr Sizing kKeys[] = {
    {'1', L"25%", {657, 429, 857, 572}},  {'2', L"50%", {617, 406, 817, 594}},
    {'3', L"75%", {577, 384, 823, 617}},  {'4', L"100%", {537, 361, 863, 639}},
    {'5', L"150%", {457, 316, 943, 684}}, {'6', L"200%", {377, 271, 1023, 729}},
};
constexpr WPARAM kMenu25 = 5070;

// On a work area of 1920 by 1080 the height decides: 324, 486, 648 and 810 pixels with frame and bars.
constexpr Sizing kMonitorCommands[] = {
    {5080, L"모니터 30%", {497, 338, 904, 662}},
    {5081, L"모니터 45%", {353, 257, 1048, 743}},
    {5082, L"모니터 60%", {209, 176, 1192, 824}},
    {5083, L"모니터 75%", {65, 95, 1336, 905}},
};

class WindowSizingTest : public ProgramTest {
protected:
    static void ExpectPlace(const Player& player, const Rect& expected) {
        EXPECT_TRUE(WaitForPlace(player.MainWindow(), expected))
            << "stands at " << TextOf(ScreenRectOf(player.MainWindow()));
    }

    static void PressIn(const Player& player, const Rect& place, WPARAM key) {
        ASSERT_TRUE(PutAt(player.MainWindow(), place));
        PressKey(static_cast<WORD>(key));
    }

    // Every way to size the window leaves it as it is, and shows its message.
    static void ExpectNoSizing(Player& player) {
        player.Activate();
        ASSERT_TRUE(PutAt(player.MainWindow(), kPlace));
        for (const Sizing& key : kKeys) {
            PressKey(static_cast<WORD>(key.trigger));
            EXPECT_TRUE(WaitForMessage(player, key.message));
        }
        for (const Sizing& command : kMonitorCommands) {
            EXPECT_EQ(player.Send(WM_COMMAND, command.trigger), 0);
            EXPECT_TRUE(WaitForMessage(player, command.message));
        }
        EXPECT_EQ(ScreenRectOf(player.MainWindow()), kPlace);
    }
};

TEST_F(WindowSizingTest, KeysGiveThePictureItsPartOfTheFilmsSize) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Activate();
    for (const Sizing& key : kKeys) {
        SCOPED_TRACE(static_cast<char>(key.trigger));
        PressIn(player, kPlace, key.trigger);
        ExpectPlace(player, key.expected);
        const Rect& window = key.expected;
        EXPECT_EQ(ScreenRectOf(player.VideoWindow()),
                  (Rect{window.left + 3, window.top + 35, window.right - 3, window.bottom - 63}));
    }
    EXPECT_TRUE(player.WaitForFrame(kFilm).has_value()) << "at twice its size it fills the window exactly";
    EXPECT_EQ(player.PictureOnScreen(kFilm).Width(), 640);
    EXPECT_EQ(player.PictureOnScreen(kFilm).Height(), 360);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowSizingTest, CommandsOfTheMenuDoTheSame) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    WPARAM command = kMenu25;
    for (const Sizing& key : kKeys) {
        SCOPED_TRACE(command);
        ASSERT_TRUE(PutAt(player.MainWindow(), kPlace));
        EXPECT_EQ(player.Send(WM_COMMAND, command), 0);
        EXPECT_EQ(ScreenRectOf(player.MainWindow()), key.expected);
        ++command;
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowSizingTest, CommandsGiveTheWindowItsPartOfTheMonitor) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    ASSERT_EQ(WorkAreaOf(player.MainWindow()), (Rect{0, 0, 1920, 1080}));
    for (const Sizing& command : kMonitorCommands) {
        SCOPED_TRACE(command.trigger);
        ASSERT_TRUE(PutAt(player.MainWindow(), kPlace));
        EXPECT_EQ(player.Send(WM_COMMAND, command.trigger), 0);
        EXPECT_EQ(ScreenRectOf(player.MainWindow()), command.expected);
        EXPECT_TRUE(player.WaitForFrame(kFilm).has_value());
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowSizingTest, NearAnEdgeTheWindowStaysOnTheWorkArea) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Activate();
    ASSERT_EQ(WorkAreaOf(player.MainWindow()), (Rect{0, 0, 1920, 1080}));
    PressIn(player, {1700, 950, 1900, 1050}, '6');
    ExpectPlace(player, {1274, 622, 1920, 1080});
    PressIn(player, {0, 0, 200, 100}, '6');
    ExpectPlace(player, {0, 0, 646, 458});
    PressIn(player, {-150, -50, 50, 50}, '4');
    ExpectPlace(player, {0, 0, 326, 278});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowSizingTest, ALargeFilmsWindowStandsOutOfTheScreenAtTheLeftAndTheTop) {
    Player player;
    ASSERT_TRUE(player.Play(kLargeFilm));
    player.Activate();
    ASSERT_EQ(WorkAreaOf(player.MainWindow()), (Rect{0, 0, 1920, 1080}));
    PressIn(player, kPlace, '2');
    ExpectPlace(player, {217, 181, 1183, 819});
    PressIn(player, kPlace, '4');
    ExpectPlace(player, {-6, -98, 1920, 1080});
    PressIn(player, kPlace, '6');
    ExpectPlace(player, {-1926, -1178, 1920, 1080});
    PressKey('2');
    ExpectPlace(player, {0, 0, 966, 638});
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowSizingTest, FrameAndBarsCountAtTheirScaledSize) {
    const TemporaryRegistryValue dpi(L"Control Panel\\Desktop", L"LogPixels", 144);
    Player player;
    ASSERT_TRUE(player.Play(kLargeFilm));
    player.Activate();
    // 8 pixels for the frame, 146 with the bars.
    PressIn(player, kPlace, '2');
    ExpectPlace(player, {216, 157, 1184, 843});
    EXPECT_EQ(ScreenRectOf(player.VideoWindow()), (Rect{220, 209, 1180, 749}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowSizingTest, WithoutAFileTheSizeStays) {
    Player player;
    ExpectNoSizing(player);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowSizingTest, WithSoundAloneTheSizeStays) {
    Player player;
    player.Drop({Media(L"song.mp3")});
    ASSERT_TRUE(
        WaitUntil(limits::kPicture, "title", [&] { return player.Title() == L"Brindlecast - song.mp3"; }));
    ASSERT_TRUE(player.IsOpen());
    ExpectNoSizing(player);
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
