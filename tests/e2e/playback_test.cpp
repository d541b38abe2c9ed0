#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/sound_recorder.h"
#include "tests/e2e/waits.h"

#include <chrono>

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

constexpr int kFramesPerKeyframe = 50;

// The readings as text, for failures.
std::string Table(const std::vector<TimedMark>& readings) {
    std::string table;
    for (const TimedMark& reading : readings) {
        table +=
            "\n" + std::to_string(reading.seconds) + " s: " + std::to_string(reading.number.value_or(-1));
    }
    return table;
}

class PlaybackTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        static_cast<void>(SoundRecorder::Instance());
    }

    // Presses Space and waits until the picture stands; the number of the frame that stays.
    static std::optional<int> Pause(Player& player, const Film& film) {
        player.Activate();
        PressKey(VK_SPACE);
        return player.WaitForStandstill(film);
    }
};

TEST_F(PlaybackTest, TheFrameOnTheScreenAdvancesWithTheClock) {
    Player player;
    for (const Film& film : {kFilm, kFilmMp4}) {
        ASSERT_TRUE(player.Play(film));
        const auto readings = player.Watch(film, milliseconds(4000));
        const PlaybackVerdict verdict = JudgePlayback(readings, film.framesPerSecond, kScreenTolerance);
        EXPECT_TRUE(verdict.moving);
        EXPECT_TRUE(verdict.inStep) << "largest lag " << verdict.largestLag << " s of " << verdict.readable
                                    << " readings among " << readings.size() << Table(readings);
        EXPECT_GT(verdict.distinct, 60);
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PlaybackTest, TheSoundHasTheFilesToneAndLevelWithoutHoles) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    LetPlay(milliseconds(3500));
    const Recording sound = SoundRecorder::Instance().Last(2.5);
    EXPECT_NEAR(LevelDbfs(sound.left), -20.0, 0.5);
    EXPECT_NEAR(DominantFrequency(sound.left, sound.rate).value_or(0.0), 440.0, 0.5);
    EXPECT_TRUE(SilentIntervals(sound.left, sound.rate, -60.0, 0.02).empty());
    EXPECT_GE(FindTicks(sound.right, sound.rate).size(), 2U);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PlaybackTest, SpacePausesAndResumes) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    const auto paused = Pause(player, kFilm);
    ASSERT_TRUE(paused.has_value());
    LetPlay(milliseconds(800));
    EXPECT_EQ(player.FrameOnScreen(kFilm), paused);
    const Recording silence = SoundRecorder::Instance().Last(0.3);
    EXPECT_LT(LevelDbfs(silence.left), -70.0);
    PressKey(VK_SPACE);
    EXPECT_TRUE(WaitUntil(limits::kReaction, "resuming",
                          [&] { return player.FrameOnScreen(kFilm).value_or(0) > *paused; }));
    EXPECT_LT(player.FrameOnScreen(kFilm).value_or(10'000), *paused + 25) << "nothing may be skipped over";
    EXPECT_TRUE(WaitUntil(limits::kReaction, "sound again",
                          [] { return LevelDbfs(SoundRecorder::Instance().Last(0.2).left) > -22.0; }));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PlaybackTest, RightAndLeftStepFromKeyframeToKeyframe) {
    for (const Film& film : {kFilm, kFilmMp4}) {
        Player player;
        ASSERT_TRUE(player.Play(film));
        const auto paused = Pause(player, film);
        ASSERT_TRUE(paused.has_value());
        ASSERT_LT(*paused, 4 * kFramesPerKeyframe);
        // The first keyframe more than half a second ahead.
        int expected = (*paused + 13) / kFramesPerKeyframe * kFramesPerKeyframe + kFramesPerKeyframe;
        PressKey(VK_RIGHT);
        EXPECT_TRUE(player.WaitForFrameNumber(film, expected)) << player.FrameOnScreen(film).value_or(-1);
        expected += kFramesPerKeyframe;
        PressKey(VK_RIGHT);
        EXPECT_TRUE(player.WaitForFrameNumber(film, expected)) << player.FrameOnScreen(film).value_or(-1);
        expected -= kFramesPerKeyframe;
        PressKey(VK_LEFT);
        EXPECT_TRUE(player.WaitForFrameNumber(film, expected)) << player.FrameOnScreen(film).value_or(-1);
        EXPECT_EQ(player.Close(), 0U);
    }
}

TEST_F(PlaybackTest, ASeekWhileRunningGoesOnFromTheKeyframe) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Activate();
    PressKey(VK_RIGHT);
    PressKey(VK_RIGHT);
    // The frame of the keyframe stands for a moment before the clock starts again.
    EXPECT_TRUE(
        WaitUntil(limits::kReaction, "seek", [&] { return player.FrameOnScreen(kFilm).value_or(0) > 101; }));
    const auto readings = player.Watch(kFilm, milliseconds(2000));
    EXPECT_TRUE(JudgePlayback(readings, kFilm.framesPerSecond, kScreenTolerance).inStep);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PlaybackTest, TheEndOfTheFilmStops) {
    Player player;
    ASSERT_TRUE(player.Play(kShortFilm));
    EXPECT_TRUE(WaitUntil(limits::kPicture, "end", [&] { return !player.IsOpen(); }));
    const Rect video = ScreenRectOf(player.VideoWindow());
    EXPECT_TRUE(WaitUntil(limits::kReaction, "black picture", [&] {
        return PhotographScreen(video).BlackShare({0, 0, video.Width(), video.Height()}) == 1.0;
    }));
    LetPlay(milliseconds(500));
    EXPECT_LT(LevelDbfs(SoundRecorder::Instance().Last(0.2).left), -70.0);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PlaybackTest, SpaceAfterTheEndPlaysTheLastFileAgain) {
    Player player;
    ASSERT_TRUE(player.Play(kShortFilm));
    ASSERT_TRUE(WaitUntil(limits::kPicture, "end", [&] { return !player.IsOpen(); }));
    player.Activate();
    PressKey(VK_SPACE);
    EXPECT_TRUE(player.WaitForFrame(kShortFilm).has_value());
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PlaybackTest, ADoubleClickOnThePicturePauses) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    const Rect picture = player.PictureOnScreen(kFilm);
    DoubleClick({(picture.left + picture.right) / 2, picture.top + 20});
    EXPECT_TRUE(player.WaitForStandstill(kFilm).has_value());
    EXPECT_TRUE(player.IsOpen());
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(PlaybackTest, TheWheelChangesTheVolumeAndIsRemembered) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    const Rect picture = player.PictureOnScreen(kFilm);
    const Point middle{(picture.left + picture.right) / 2, picture.top + 20};
    for (int notch = 0; notch < 10; ++notch) {
        TurnWheel(middle, -1);
    }
    EXPECT_TRUE(WaitUntil(limits::kReaction, "stored volume", [&] {
        // Ten steps in single precision leave a little less than a half, which is cut.
        return store.ReadDword(L"Volume", TypeCheck::Strict) == 49;
    }));
    // Half the volume is 6 dB less.
    double level = kNoLevel;
    EXPECT_TRUE(WaitUntil(limits::kReaction, "quieter sound", [&] {
        level = LevelDbfs(SoundRecorder::Instance().Last(0.3).left);
        return level > -26.7 && level < -25.4;
    })) << level;
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
