#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/sound_recorder.h"
#include "tests/e2e/waits.h"

#include <array>

namespace brindlecast::testing {
namespace {

// The numbers as the windows around the picture send them.
enum Message : UINT {
    kTogglePlay = 1224,
    kStop = 1225,
    kStepBackward = 1226,
    kStepForward = 1227,
    kOpenDialog = 1228,
    kIsPlaying = 1229,
    kSeek = 1230,
    kSetVolume = 1231,
    kSetMuted = 1232,
};
constexpr WPARAM kMenuStop = 5004;
constexpr WPARAM kMenuExit = 5022;
constexpr int kFramesPerKeyframe = 50;

// Each message and command of the main window, sent as its children and menus do.
class MessageTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        static_cast<void>(SoundRecorder::Instance());
    }

    static bool IsSilent() {
        return WaitUntil(limits::kReaction, "silence",
                         [] { return LevelDbfs(SoundRecorder::Instance().Last(0.2).left) < -70.0; });
    }
};

TEST_F(MessageTest, StopClosesTheFile) {
    Player player;
    for (const bool byCommand : {false, true}) {
        SCOPED_TRACE(byCommand);
        ASSERT_TRUE(player.Play(kFilm));
        EXPECT_EQ(byCommand ? player.Send(WM_COMMAND, kMenuStop) : player.Send(kStop), 0);
        EXPECT_FALSE(player.IsOpen());
        const Rect video = ScreenRectOf(player.VideoWindow());
        EXPECT_TRUE(WaitUntil(limits::kReaction, "black picture", [&] {
            return PhotographScreen(video).BlackShare({0, 0, video.Width(), video.Height()}) == 1.0;
        }));
        EXPECT_TRUE(IsSilent());
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MessageTest, WhetherAFilePlaysOrIsPausedIsOneAnswer) {
    Player player;
    EXPECT_EQ(player.Send(kIsPlaying), 0);
    ASSERT_TRUE(player.Play(kFilm));
    EXPECT_EQ(player.Send(kIsPlaying), 1);
    EXPECT_EQ(player.Send(kTogglePlay), 0);
    EXPECT_TRUE(player.WaitForStandstill(kFilm).has_value());
    EXPECT_EQ(player.Send(kIsPlaying), 1);
    EXPECT_EQ(player.Send(kStop), 0);
    EXPECT_EQ(player.Send(kIsPlaying), 0);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MessageTest, StepsGoFromKeyframeToKeyframe) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Send(kTogglePlay);
    const auto paused = player.WaitForStandstill(kFilm);
    ASSERT_TRUE(paused.has_value());
    // The first keyframe more than half a second ahead.
    int expected = (*paused + 13) / kFramesPerKeyframe * kFramesPerKeyframe + kFramesPerKeyframe;
    EXPECT_EQ(player.Send(kStepForward), 0);
    EXPECT_TRUE(player.WaitForFrameNumber(kFilm, expected)) << player.FrameOnScreen(kFilm).value_or(-1);
    EXPECT_EQ(player.Send(kStepForward), 0);
    expected += kFramesPerKeyframe;
    EXPECT_TRUE(player.WaitForFrameNumber(kFilm, expected)) << player.FrameOnScreen(kFilm).value_or(-1);
    EXPECT_EQ(player.Send(kStepBackward), 0);
    expected -= kFramesPerKeyframe;
    EXPECT_TRUE(player.WaitForFrameNumber(kFilm, expected)) << player.FrameOnScreen(kFilm).value_or(-1);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MessageTest, ASeekGoesToThePartOfTheDurationInTenThousandths) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Send(kTogglePlay);
    ASSERT_TRUE(player.WaitForStandstill(kFilm).has_value());
    // Twenty seconds and a little more sound, a keyframe every two: the nearest one is taken.
    EXPECT_EQ(player.Send(kSeek, 7000), 0);
    EXPECT_TRUE(player.WaitForFrameNumber(kFilm, 350)) << player.FrameOnScreen(kFilm).value_or(-1);
    EXPECT_EQ(player.Send(kSeek, 1900), 0);
    EXPECT_TRUE(player.WaitForFrameNumber(kFilm, 100)) << player.FrameOnScreen(kFilm).value_or(-1);
    EXPECT_EQ(player.Send(kSeek, 0), 0);
    EXPECT_TRUE(player.WaitForFrameNumber(kFilm, 0)) << player.FrameOnScreen(kFilm).value_or(-1);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MessageTest, AVolumeInPercentIsHeardAndStored) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    ASSERT_TRUE(SoundRecorder::Instance().Hears(440.0));
    EXPECT_EQ(player.Send(kSetVolume, 50), 0);
    EXPECT_EQ(store.ReadDword(L"Volume", TypeCheck::Strict), 50U);
    // Half the volume is 6 dB less than the -20 of the file.
    double level = kNoLevel;
    EXPECT_TRUE(WaitUntil(limits::kReaction, "quieter sound", [&] {
        level = LevelDbfs(SoundRecorder::Instance().Last(0.3).left);
        return level > -26.7 && level < -25.4;
    })) << level;
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MessageTest, MutingSilencesIsStoredAndIsUndone) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    ASSERT_TRUE(SoundRecorder::Instance().Hears(440.0));
    EXPECT_EQ(player.Send(kSetMuted, 1), 0);
    EXPECT_EQ(store.ReadDword(L"Muted", TypeCheck::Strict), 1U);
    EXPECT_TRUE(IsSilent());
    EXPECT_EQ(player.Send(kSetMuted, 0), 0);
    EXPECT_EQ(store.ReadDword(L"Muted", TypeCheck::Strict), 0U);
    EXPECT_TRUE(SoundRecorder::Instance().Hears(440.0));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MessageTest, TheDialogOpensIsTitledAndCanBeLeft) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Activate();
    // Posted, because the answer comes only when the dialog is closed.
    PostMessageW(player.MainWindow(), kOpenDialog, 0, 0);
    HWND dialog = nullptr;
    ASSERT_TRUE(WaitUntil(limits::kDialog, "open dialog", [&] {
        dialog = player.OwnProcess().FindVisibleWindow(L"#32770");
        return dialog != nullptr && GetForegroundWindow() == dialog;
    }));
    std::array<wchar_t, 64> title{};
    GetWindowTextW(dialog, title.data(), static_cast<int>(title.size()));
    EXPECT_EQ(std::wstring(title.data()), L"Open Media File");
    EXPECT_EQ(GetWindow(dialog, GW_OWNER), player.MainWindow());
    PressKey(VK_ESCAPE);
    EXPECT_TRUE(WaitUntil(limits::kDialog, "closing of the open dialog",
                          [&] { return player.OwnProcess().FindVisibleWindow(L"#32770") == nullptr; }));
    EXPECT_TRUE(player.IsOpen()) << "a dialog that was left changes nothing";
    EXPECT_EQ(player.Title(), L"Brindlecast - film.mkv");
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MessageTest, TheExitCommandEndsTheProcessAndSavesTheSettings) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Send(WM_COMMAND, kMenuExit);
    EXPECT_EQ(player.OwnProcess().WaitForEnd(limits::kExit), 0U);
    EXPECT_EQ(store.ReadDword(L"WindowW", TypeCheck::Strict), 1200U);
}

TEST_F(MessageTest, WithoutAFileNothingHappens) {
    Player player;
    for (const UINT message : {kTogglePlay, kStop, kStepBackward, kStepForward, kSeek}) {
        EXPECT_EQ(player.Send(message, 5000), 0) << message;
        EXPECT_FALSE(player.IsOpen()) << message;
    }
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuStop), 0);
    EXPECT_EQ(player.Title(), L"Brindlecast");
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
