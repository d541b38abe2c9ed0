#include "tests/e2e/sound_recorder.h"
#include "tests/e2e/waits.h"
#include "tests/filters/roads/road_fixture.h"

#include <array>
#include <cmath>

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

// How much of the recording is looked at for holes.
constexpr milliseconds kJudged{1500};
// Seconds within which a new track has to be heard.
constexpr double kLongestHole = 0.3;

class SoundRoad : public RoadTest {
protected:
    void SetUp() override {
        RoadTest::SetUp();
        ShowHost(320, 180);
        static_cast<void>(SoundRecorder::Instance());
    }

    // The tone of the last quarter of a second, 0 for silence.
    static double Heard() {
        const Recording sound = SoundRecorder::Instance().Last(0.25);
        return DominantFrequency(sound.left, sound.rate).value_or(0.0);
    }
    static bool WaitToHear(double frequency) {
        return PumpUntil(limits::kReaction, [&] { return std::abs(Heard() - frequency) < 2.0; });
    }
    static double Level() {
        PumpFor(milliseconds(1200));
        return LevelDbfs(SoundRecorder::Instance().Last(0.6).left);
    }
};

TEST_F(SoundRoad, TheVolumeIsHeardInDecibels) {
    OpenRunning(L"film.mkv");
    ASSERT_TRUE(WaitToHear(440.0));
    struct Row {
        float volume;
        double level;
    };
    // The file has -20 dBFS; -602 and -2000 hundredths of a decibel come off.
    for (const Row& row : {Row{1.0F, -20.0}, Row{0.5F, -26.02}, Row{0.1F, -40.0}}) {
        ASSERT_TRUE(engine->SetVolume(row.volume));
        EXPECT_NEAR(row.level, Level(), 1.0) << row.volume;
    }
    ASSERT_TRUE(engine->SetVolume(1.0F));
    engine->SetMuted(true);
    EXPECT_LT(Level(), -90.0);
    engine->SetMuted(false);
    EXPECT_NEAR(-20.0, Level(), 1.0);
}

// Stereo at 48 kHz, mono at 44.1 kHz, six channels at 48 kHz: in every direction.
TEST_F(SoundRoad, TracksSwitchWhilePlayingAndThePictureGoesOn) {
    constexpr std::array kTones = {440.0, 550.0, 880.0};
    OpenRunning(L"tracks_mixed.mkv");
    ASSERT_EQ(3, engine->GetAudioTrackCount());
    ASSERT_EQ(0, engine->GetActiveAudioTrack());
    ASSERT_TRUE(WaitToHear(kTones[0]));
    PumpFor(kJudged); // so that no silence from before is judged
    for (const unsigned track : {1U, 2U, 0U, 2U, 1U, 0U}) {
        SCOPED_TRACE(::testing::Message() << "to track " << track);
        const int before = FrameOnScreen().value_or(-1);
        const auto begin = std::chrono::steady_clock::now();
        ASSERT_TRUE(engine->SelectAudioTrack(track));
        EXPECT_EQ(static_cast<int>(track), engine->GetActiveAudioTrack());
        int lastFrame = before;
        auto lastMoved = begin;
        auto longest = begin - begin;
        EXPECT_TRUE(PumpUntil(limits::kReaction, [&] {
            const int frame = FrameOnScreen().value_or(lastFrame);
            const auto now = std::chrono::steady_clock::now();
            if (frame != lastFrame) {
                EXPECT_GT(frame, lastFrame) << "the picture never falls back";
                longest = std::max(longest, now - lastMoved);
                lastMoved = now;
                lastFrame = frame;
            }
            return std::abs(Heard() - kTones[track]) < 2.0;
        })) << Heard();
        EXPECT_GT(lastFrame, before);
        EXPECT_LT(longest, milliseconds(200)) << "the picture stood";
        const Recording sound =
            SoundRecorder::Instance().Last(std::chrono::duration<double>(kJudged).count());
        for (const Interval& hole : SilentIntervals(sound.left, sound.rate, -60.0, kLongestHole)) {
            ADD_FAILURE() << "nothing was heard for " << hole.end - hole.begin << " s";
        }
        EXPECT_NEAR(film.videoStart + lastFrame / film.fps, engine->GetPosition(), 0.1);
    }
}

TEST_F(SoundRoad, AChosenTrackSurvivesASeek) {
    OpenRunning(L"tracks_mixed.mkv");
    ASSERT_TRUE(engine->SelectAudioTrack(1));
    ASSERT_TRUE(WaitToHear(550.0));
    ASSERT_TRUE(engine->Seek(10.0));
    PumpFor(milliseconds(1200));
    EXPECT_NEAR(550.0, Heard(), 2.0);
}

} // namespace
} // namespace brindlecast::testing
