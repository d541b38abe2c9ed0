#include "tests/e2e/sound_recorder.h"
#include "tests/e2e/waits.h"
#include "tests/filters/roads/road_fixture.h"

#include <cmath>

namespace brindlecast::testing {
namespace {

using Clock = std::chrono::steady_clock;

// Long enough for all that waits on the way to the ear.
constexpr std::chrono::milliseconds kSoundDelay{600};

struct Look {
    double clock;    // seconds
    double position; // seconds
    int frame;
};

class RateRoad : public RoadTest, public ::testing::WithParamInterface<double> {
protected:
    void SetUp() override {
        RoadTest::SetUp();
        ShowHost(320, 180);
        static_cast<void>(SoundRecorder::Instance());
    }

    std::vector<Look> Watch(std::chrono::milliseconds time) {
        std::vector<Look> looks;
        const auto begin = Clock::now();
        while (Clock::now() - begin < time) {
            PumpFor(std::chrono::milliseconds(20));
            const double position = engine->GetPosition();
            if (const auto frame = FrameOnScreen()) {
                looks.push_back(
                    {std::chrono::duration<double>(Clock::now() - begin).count(), position, *frame});
            }
        }
        return looks;
    }
};

TEST_P(RateRoad, PictureSoundAndPositionKeepTheRate) {
    const double rate = GetParam();
    OpenRunning(L"film.mkv");
    ASSERT_TRUE(engine->SetRate(rate));
    EXPECT_EQ(rate, engine->rate);
    // The rate begins with a seek to where it was; its first frame stands until the clock has come to it.
    const int standing = FrameOnScreen().value_or(-1);
    ASSERT_TRUE(PumpUntil(limits::kPicture, [&] { return FrameOnScreen().value_or(-1) > standing + 1; }));
    PumpFor(kSoundDelay);
    const std::vector<Look> looks = Watch(std::chrono::milliseconds(2500));
    ASSERT_GT(looks.size(), 20U);
    const Look& first = looks.front();
    const Look& last = looks.back();
    const double seconds = last.clock - first.clock;
    EXPECT_NEAR(film.fps * rate, (last.frame - first.frame) / seconds, film.fps * rate * 0.03 + 0.5);
    EXPECT_NEAR(rate, (last.position - first.position) / seconds, rate * 0.03);
    // One frame, or 50 ms of the clock.
    const double tolerance = std::max(1.0 / film.fps, 0.05 * rate);
    for (const Look& look : looks) {
        const double shown = film.videoStart + look.frame / film.fps;
        EXPECT_NEAR(look.position, shown + 0.5 / film.fps, tolerance + 0.5 / film.fps) << "at " << look.clock;
    }
    const Recording sound = SoundRecorder::Instance().Last(2.0);
    EXPECT_NEAR(440.0, DominantFrequency(sound.left, sound.rate).value_or(0.0), 1.0);
    EXPECT_NEAR(-20.0, LevelDbfs(sound.left), 1.0);
}

INSTANTIATE_TEST_SUITE_P(Rates, RateRoad, ::testing::Values(0.25, 0.5, 1.0, 2.0, 4.0));

TEST_F(RateRoad, BackAtOneTheFilmRunsToItsEnd) {
    OpenRunning(L"short.mkv");
    ASSERT_TRUE(engine->SetRate(2.0));
    PumpFor(std::chrono::milliseconds(400));
    ASSERT_TRUE(engine->SetRate(1.0));
    EXPECT_TRUE(WaitForEnd(std::chrono::milliseconds(8000)));
}

TEST_F(RateRoad, AtFourTimesTheSpeedTheEndComesFourTimesSooner) {
    OpenRunning(L"film.mkv");
    ASSERT_TRUE(engine->SetRate(4.0));
    ASSERT_TRUE(engine->Seek(8.0));
    const auto begin = Clock::now();
    EXPECT_TRUE(WaitForEnd(std::chrono::milliseconds(8000)));
    const double took = std::chrono::duration<double>(Clock::now() - begin).count();
    EXPECT_NEAR((film.duration - 8.0) / 4.0 + 0.2, took, 0.5);
}

} // namespace
} // namespace brindlecast::testing
