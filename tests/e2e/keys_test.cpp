#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/sound_recorder.h"
#include "tests/e2e/waits.h"

#include <array>
#include <chrono>
#include <string>

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

constexpr UINT kCurrentPosition = 1255;
constexpr WPARAM kMenuAbout = 5021;
constexpr int kDialogText = 0xFFFF; // the control of a message box that holds its text

class KeysTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        static_cast<void>(SoundRecorder::Instance());
    }

    static void Play(Player& player, const Film& film) {
        ASSERT_TRUE(player.Play(film));
        player.Activate();
    }
    static bool ShowsAMessage(const Player& player) {
        return player.OwnProcess().FindVisibleWindow(L"BrindlecastOverlay") != nullptr;
    }
    static bool WaitForNoMessage(const Player& player) {
        return WaitUntil(limits::kReaction, "end of a message", [&] { return !ShowsAMessage(player); });
    }
    // Waits for this volume in percent in the registry.
    ::testing::AssertionResult StoresVolume(std::uint32_t percent) {
        const auto stored = [&] {
            return store.ReadDword(L"Volume", TypeCheck::Strict);
        };
        return WaitUntil(limits::kReaction, "stored volume", [&] { return stored() == percent; })
                   ? ::testing::AssertionSuccess()
                   : ::testing::AssertionFailure()
                         << percent << " wanted, " << stored().value_or(999) << " stored";
    }
    // Presses the key and expects a message, whatever was on show before.
    static void ExpectMessageAfter(const Player& player, WORD key) {
        ASSERT_TRUE(WaitForNoMessage(player));
        PressKey(key);
        EXPECT_TRUE(WaitUntil(limits::kReaction, "message", [&] { return ShowsAMessage(player); }));
    }
    static bool WaitForLevel(double dbfs) {
        return WaitUntil(limits::kReaction, "level", [&] {
            const double level = LevelDbfs(SoundRecorder::Instance().Last(0.3).left);
            return level > dbfs - 0.7 && level < dbfs + 0.7;
        });
    }
    static bool WaitForSilence() {
        return WaitUntil(limits::kReaction, "silence",
                         [] { return LevelDbfs(SoundRecorder::Instance().Last(0.2).left) < -70.0; });
    }
    // The text of a control of another process.
    static std::wstring TextOf(HWND control) {
        std::array<wchar_t, 256> text{};
        DWORD_PTR length = 0;
        SendMessageTimeoutW(control, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                            SMTO_NORMAL, static_cast<UINT>(limits::kReaction.count()), &length);
        return text.data();
    }
};

TEST_F(KeysTest, UpAndDownChangeTheVolumeByATwentiethAndTellAtTheEndsToo) {
    Player player;
    Play(player, kFilm);
    ASSERT_TRUE(WaitForLevel(-20.0));
    ExpectMessageAfter(player, VK_UP);
    ASSERT_TRUE(StoresVolume(100));
    EXPECT_TRUE(WaitForLevel(-20.0));
    // What is stored is cut, and twentieths are not exact in single precision.
    for (const std::uint32_t percent :
         {95, 90, 85, 79, 74, 69, 64, 59, 54, 49, 44, 39, 34, 29, 24, 19, 14, 9, 4, 0}) {
        PressKey(VK_DOWN);
        ASSERT_TRUE(StoresVolume(percent));
    }
    EXPECT_TRUE(WaitForSilence());
    ExpectMessageAfter(player, VK_DOWN);
    ASSERT_TRUE(StoresVolume(0));
    EXPECT_TRUE(WaitForSilence());
    for (std::uint32_t percent = 5; percent <= 100; percent += 5) {
        PressKey(VK_UP);
        ASSERT_TRUE(StoresVolume(percent));
    }
    EXPECT_TRUE(WaitForLevel(-20.0));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(KeysTest, TheWheelGoesOneStepForEachMessageHoweverFarItIsTurned) {
    store.WriteDword(L"Volume", 50);
    Player player;
    Play(player, kFilm);
    const Rect picture = player.PictureOnScreen(kFilm);
    const Point middle{(picture.left + picture.right) / 2, (picture.top + picture.bottom) / 2};
    TurnWheel(middle, 1);
    ASSERT_TRUE(StoresVolume(55));
    TurnWheel(middle, 3);
    ASSERT_TRUE(StoresVolume(60));
    EXPECT_TRUE(WaitForLevel(-20.0 - 4.44)); // 20 times the logarithm of 0.6
    TurnWheel(middle, -1);
    TurnWheel(middle, -3);
    TurnWheel(middle, -1);
    ASSERT_TRUE(StoresVolume(45));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(KeysTest, MTakesTheSoundAwayAndBringsItBack) {
    Player player;
    Play(player, kFilm);
    ASSERT_TRUE(SoundRecorder::Instance().Hears(440.0));
    PressKey('M');
    EXPECT_TRUE(WaitForSilence());
    EXPECT_EQ(store.ReadDword(L"Muted", TypeCheck::Strict), 1U);
    EXPECT_EQ(store.ReadDword(L"Volume", TypeCheck::Strict), 100U) << "the volume itself stays";
    PressKey('M');
    EXPECT_TRUE(SoundRecorder::Instance().Hears(440.0));
    EXPECT_TRUE(WaitForLevel(-20.0));
    EXPECT_EQ(store.ReadDword(L"Muted", TypeCheck::Strict), 0U);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(KeysTest, PPausesAndPlaysOnAndSoDoesItsMenuEntry) {
    constexpr WPARAM kMenuPlay = 5003;
    Player player;
    Play(player, kFilm);
    for (const bool byMenu : {false, true}) {
        SCOPED_TRACE(byMenu);
        const auto toggle = [&] {
            if (byMenu) {
                player.Send(WM_COMMAND, kMenuPlay);
            } else {
                PressKey('P');
            }
        };
        toggle();
        const auto paused = player.WaitForStandstill(kFilm);
        ASSERT_TRUE(paused.has_value());
        EXPECT_TRUE(player.IsOpen());
        toggle();
        EXPECT_TRUE(WaitUntil(limits::kReaction, "playing on",
                              [&] { return player.FrameOnScreen(kFilm).value_or(0) > *paused + 5; }));
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(KeysTest, KeysOfTheSubtitlesLeaveAFilmWithoutThemAlone) {
    Player player;
    Play(player, kFilm);
    constexpr WORD kComma = VK_OEM_COMMA;
    constexpr WORD kPeriod = VK_OEM_PERIOD;
    constexpr WORD kSlash = VK_OEM_2;
    for (const WORD key : {kComma, kPeriod, kSlash}) {
        PressKey(key);
        PressKeyWith(VK_SHIFT, key);
    }
    const PlaybackVerdict verdict =
        JudgePlayback(player.Watch(kFilm, milliseconds(2000)), kFilm.framesPerSecond, kScreenTolerance);
    EXPECT_TRUE(verdict.inStep) << verdict.largestLag;
    EXPECT_GT(verdict.distinct, 30);
    EXPECT_TRUE(SoundRecorder::Instance().Hears(440.0));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(KeysTest, CommandsThatDoNotExistChangeNothing) {
    Player player;
    Play(player, kFilm);
    PressKey(VK_SPACE);
    const auto paused = player.WaitForStandstill(kFilm);
    ASSERT_TRUE(paused.has_value());
    const Rect window = ScreenRectOf(player.MainWindow());
    ASSERT_TRUE(WaitForNoMessage(player));
    // 5002 and 5020 have an entry in the menu, and no effect.
    for (const WPARAM id : {4999, 5002, 5007, 5020, 5111, 5999, 6000, 6007, 6099, 0, 65535}) {
        SCOPED_TRACE(id);
        EXPECT_EQ(player.Send(WM_COMMAND, id), 0);
        EXPECT_FALSE(ShowsAMessage(player));
        EXPECT_EQ(player.OwnProcess().FindVisibleWindow(L"#32770"), nullptr);
        EXPECT_TRUE(player.IsOpen());
        EXPECT_EQ(player.Title(), L"Brindlecast - film.mkv");
        EXPECT_EQ(ScreenRectOf(player.MainWindow()), window);
        EXPECT_EQ(store.ReadDword(L"Volume", TypeCheck::Strict), 100U);
    }
    LetPlay(milliseconds(300));
    EXPECT_EQ(player.FrameOnScreen(kFilm), paused);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(KeysTest, TheAboutBoxTellsNameAndVersionAndGoesWithEnter) {
    Player player;
    Play(player, kFilm);
    PostMessageW(player.MainWindow(), WM_COMMAND, kMenuAbout, 0);
    HWND box = nullptr;
    ASSERT_TRUE(WaitUntil(limits::kDialog, "about box", [&] {
        box = player.OwnProcess().FindVisibleWindow(L"#32770");
        return box != nullptr && GetForegroundWindow() == box;
    }));
    EXPECT_EQ(TextOf(box), L"About Brindlecast");
    EXPECT_EQ(TextOf(GetDlgItem(box, kDialogText)), L"Brindlecast\nVersion 1.0");
    EXPECT_EQ(GetWindow(box, GW_OWNER), player.MainWindow());
    PressKey(VK_RETURN);
    EXPECT_TRUE(WaitUntil(limits::kDialog, "closing of the about box",
                          [&] { return player.OwnProcess().FindVisibleWindow(L"#32770") == nullptr; }));
    EXPECT_TRUE(player.IsOpen());
    EXPECT_EQ(ScreenRectOf(player.MainWindow()).Width(), 1200) << "Enter must not reach the main window";
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(KeysTest, ThePositionIsAnsweredInMilliseconds) {
    Player player;
    EXPECT_EQ(player.Send(kCurrentPosition), 0);
    Play(player, kFilm);
    PressKey(VK_SPACE);
    const auto paused = player.WaitForStandstill(kFilm);
    ASSERT_TRUE(paused.has_value());
    const auto position = player.Send(kCurrentPosition);
    ASSERT_TRUE(position.has_value());
    // The first frame of the film stands at 21 ms; within one frame the position is anything.
    EXPECT_GE(*position, *paused * 40LL + 21);
    EXPECT_LE(*position, *paused * 40LL + 21 + 40);
    EXPECT_EQ(player.Send(kCurrentPosition), position) << "a paused film stays where it is";
    PressKey(VK_SPACE);
    EXPECT_TRUE(WaitUntil(limits::kReaction, "later position",
                          [&] { return player.Send(kCurrentPosition).value_or(0) > *position + 200; }));
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
