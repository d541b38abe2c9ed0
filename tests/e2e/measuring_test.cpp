#include "tests/e2e/fixture.h"
#include "tests/e2e/sound_recorder.h"
#include "tests/e2e/waits.h"

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

// What the other tests look and listen with must be able to say no.
class MeasuringTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        static_cast<void>(SoundRecorder::Instance());
    }

    static PlaybackVerdict Judge(const Player& player) {
        return JudgePlayback(player.Watch(kFilm, milliseconds(1500)), kFilm.framesPerSecond,
                             kScreenTolerance);
    }
};

TEST_F(MeasuringTest, ABlackWindowCarriesNoFrame) {
    Player player;
    const PlaybackVerdict verdict = Judge(player);
    EXPECT_EQ(player.FrameOnScreen(kFilm), std::nullopt);
    EXPECT_EQ(verdict.readable, 0);
    EXPECT_FALSE(verdict.moving);
    EXPECT_FALSE(verdict.inStep);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MeasuringTest, AFrozenPictureIsSeenButDoesNotMove) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    EXPECT_TRUE(Judge(player).inStep);
    player.Send(WM_USER + 200);
    ASSERT_TRUE(player.WaitForStandstill(kFilm).has_value());
    const PlaybackVerdict verdict = Judge(player);
    EXPECT_GT(verdict.readable, 0);
    EXPECT_EQ(verdict.distinct, 1);
    EXPECT_FALSE(verdict.moving);
    EXPECT_FALSE(verdict.inStep);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MeasuringTest, AnotherFilmIsNotTakenForTheOneThatIsAskedFor) {
    Player player;
    ASSERT_TRUE(player.Play(kSecondFilm));
    EXPECT_FALSE(player.WaitForFrameNumber(kFilm, 0));
    const PlaybackVerdict verdict = Judge(player); // thirty frames a second are judged as twenty-five
    EXPECT_TRUE(verdict.moving);
    EXPECT_FALSE(verdict.inStep);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(MeasuringTest, AMutedPlayerIsNotHeard) {
    store.WriteDword(L"Muted", 1);
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    EXPECT_FALSE(SoundRecorder::Instance().Hears(440.0, milliseconds(1500)));
    EXPECT_LT(LevelDbfs(SoundRecorder::Instance().Last(0.3).left), -70.0);
    player.Send(WM_USER + 208, 0);
    EXPECT_TRUE(SoundRecorder::Instance().Hears(440.0)) << "unmuted it must be";
    EXPECT_FALSE(SoundRecorder::Instance().Hears(450.0, milliseconds(500))) << "another tone is not there";
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
