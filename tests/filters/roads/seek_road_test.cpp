#include "tests/e2e/waits.h"
#include "tests/filters/roads/road_fixture.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace brindlecast::testing {
namespace {

class SeekRoad : public RoadTest {
protected:
    // The listed keyframe nearest to a time, the earlier one of two.
    [[nodiscard]] double NearestKeyframe(double seconds) const {
        return *std::ranges::min_element(film.keyframes, {}, [&](double keyframe) {
            return std::pair(std::abs(keyframe - seconds), keyframe);
        });
    }
    void ExpectAt(double seconds, int frame) {
        EXPECT_TRUE(WaitForFrame(frame)) << FrameOnScreen().value_or(-1) << " instead of " << frame;
        EXPECT_NEAR(seconds, engine->GetPosition(), 0.0015);
    }
};

TEST_F(SeekRoad, TwoHundredSeeksLandOnTheKeyframesThatAreListed) {
    std::mt19937 random(20261121);
    for (const wchar_t* name : {L"film.mkv", L"film.mp4"}) {
        OpenPaused(name);
        ASSERT_EQ(film.keyframes.size(), engine->keyFrames.size());
        std::uniform_real_distribution<double> times(0.0, film.duration);
        for (int i = 0; i < 100; ++i) {
            const double target = times(random);
            const double keyframe = NearestKeyframe(target);
            SCOPED_TRACE(::testing::Message() << film.name << " to " << target);
            ASSERT_TRUE(engine->Seek(target));
            ExpectAt(keyframe, FrameAt(keyframe));
            if (HasFailure()) {
                return;
            }
        }
    }
}

TEST_F(SeekRoad, HalfWayBetweenTwoKeyframesTheEarlierOneIsTaken) {
    OpenPaused(L"film.mkv");
    const double first = static_cast<double>(engine->keyFrames[3]) / 1e7;
    const double second = static_cast<double>(engine->keyFrames[4]) / 1e7;
    ASSERT_TRUE(engine->Seek((first + second) / 2));
    ExpectAt(first, FrameAt(first));
    ASSERT_TRUE(engine->Seek((first + second) / 2 + 0.001));
    ExpectAt(second, FrameAt(second));
}

TEST_F(SeekRoad, BehindTheLastKeyframeItIsTheLastKeyframe) {
    OpenPaused(L"film.mkv");
    ASSERT_TRUE(engine->Seek(film.duration + 100.0));
    ExpectAt(film.keyframes.back(), FrameAt(film.keyframes.back()));
    ASSERT_TRUE(engine->SeekNextKeyFrame());
    ExpectAt(film.keyframes.back(), FrameAt(film.keyframes.back()));
}

TEST_F(SeekRoad, WithoutATableSeeksAreExact) {
    std::mt19937 random(7);
    OpenPaused(L"no_cues.mkv");
    ASSERT_TRUE(engine->keyFrames.empty());
    std::uniform_int_distribution<int> frames(1, film.frames - 2);
    for (int i = 0; i < 40; ++i) {
        const int frame = frames(random);
        // In the middle of its time.
        const double target = film.videoStart + (frame + 0.5) / film.fps;
        SCOPED_TRACE(::testing::Message() << "frame " << frame);
        ASSERT_TRUE(engine->Seek(target));
        EXPECT_TRUE(WaitForFrame(frame)) << FrameOnScreen().value_or(-1) << " i " << i;
        EXPECT_NEAR(target, engine->GetPosition(), 0.5 / film.fps + 0.0015);
        if (HasFailure()) {
            return;
        }
    }
}

TEST_F(SeekRoad, ARunningSeekTellsItsPlaceAtOnceAndRunsOn) {
    OpenRunning(L"film.mkv");
    for (const double target : {8.0, 2.0, 14.0, 0.0}) {
        const double keyframe = NearestKeyframe(target);
        ASSERT_TRUE(engine->Seek(target));
        EXPECT_GE(engine->GetPosition(), keyframe - 0.0015);
        EXPECT_LT(engine->GetPosition(), keyframe + 0.3);
        EXPECT_TRUE(PumpUntil(limits::kPicture, [&] {
            const int frame = FrameOnScreen().value_or(-1);
            return frame > FrameAt(keyframe) && frame < FrameAt(keyframe) + 50;
        })) << FrameOnScreen().value_or(-1);
    }
}

// The end of the part is told to the engine by a timer; here the test is the timer.
TEST_F(SeekRoad, ARepeatedPartBeginsAHundredTimesAtTheSameFrame) {
    OpenRunning(L"film.mkv");
    constexpr int kFirst = 213; // between two keyframes
    engine->markA = static_cast<Time100ns>((film.videoStart + (kFirst + 0.5) / film.fps) * 1e7);
    engine->markB = engine->markA + 2'500'000;
    ASSERT_TRUE(engine->Seek(8.4)); // the keyframe before
    std::uint64_t now = 0;
    const auto jumps = [this] {
        return CountTraced(L"AB Repeat: Jump to A");
    };
    for (int jump = 1; jump <= 100; ++jump) {
        now += 1'000; // the pause between two jumps has its own tests
        ASSERT_TRUE(PumpUntil(limits::kReaction,
                              [&] {
                                  engine->RepeatBetweenMarks(now);
                                  return jumps() == jump;
                              }))
            << "jump " << jump << " at " << engine->GetPosition();
        ASSERT_TRUE(PumpUntil(limits::kReaction,
                              [&] {
                                  const auto frame = FrameOnScreen();
                                  return frame && *frame < kFirst + 4;
                              }))
            << "jump " << jump;
        ASSERT_EQ(kFirst, FrameOnScreen()) << "jump " << jump;
    }
}

} // namespace
} // namespace brindlecast::testing
