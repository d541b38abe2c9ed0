#include "filters/core/picture_schedule.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

constexpr std::int64_t kMs = 10'000;

ScheduleInput Running(std::int64_t now, std::int64_t start, std::int64_t stop) {
    ScheduleInput input;
    input.state = PlayState::kRunning;
    input.streamTime = now;
    input.haveFrame = true;
    input.frame = {true, start, stop, 0, 1.0};
    input.first = false;
    input.sinceShown = 40 * kMs;
    return input;
}

TEST(PictureScheduleTest, WaitsForTheFramesTime) {
    EXPECT_EQ(Decide(Running(0, 40 * kMs, 80 * kMs)), (Decision{NextStep::kWait, 40 * kMs}));
    EXPECT_EQ(Decide(Running(39 * kMs, 40 * kMs, 80 * kMs)), (Decision{NextStep::kWait, kMs}));
    EXPECT_EQ(Decide(Running(39 * kMs + 1, 40 * kMs, 80 * kMs)).step, NextStep::kShow)
        << "less than a millisecond";
    EXPECT_EQ(Decide(Running(40 * kMs, 40 * kMs, 80 * kMs)).step, NextStep::kShow);
}

TEST(PictureScheduleTest, DropsLateFramesButNotForLong) {
    EXPECT_EQ(Decide(Running(80 * kMs, 40 * kMs, 80 * kMs)).step, NextStep::kShow) << "within its duration";
    EXPECT_EQ(Decide(Running(81 * kMs, 40 * kMs, 80 * kMs)).step, NextStep::kDrop);
    EXPECT_EQ(Decide(Running(60 * kMs, 40 * kMs, 50 * kMs)).step, NextStep::kShow)
        << "40 ms are always granted";
    EXPECT_EQ(Decide(Running(540 * kMs, 40 * kMs, 1040 * kMs)).step, NextStep::kShow)
        << "a long frame's own time";
    ScheduleInput starved = Running(5000 * kMs, 40 * kMs, 80 * kMs);
    starved.sinceShown = 199 * kMs;
    EXPECT_EQ(Decide(starved).step, NextStep::kDrop);
    starved.sinceShown = 200 * kMs;
    EXPECT_EQ(Decide(starved).step, NextStep::kShow);
}

TEST(PictureScheduleTest, TheFirstFrameGoesOutAtOnce) {
    ScheduleInput input = Running(0, 400 * kMs, 440 * kMs);
    input.first = true;
    EXPECT_EQ(Decide(input).step, NextStep::kShow);
    input.state = PlayState::kPaused;
    EXPECT_EQ(Decide(input).step, NextStep::kShow);
    input.first = false;
    EXPECT_EQ(Decide(input).step, NextStep::kNothing);
    input.first = true;
    input.state = PlayState::kStopped;
    EXPECT_EQ(Decide(input).step, NextStep::kNothing);
}

TEST(PictureScheduleTest, UntimedFramesDoNotWait) {
    ScheduleInput input = Running(0, 400 * kMs, 440 * kMs);
    input.frame.timed = false;
    EXPECT_EQ(Decide(input).step, NextStep::kShow);
}

TEST(PictureScheduleTest, TheEndFollowsTheLastFrame) {
    ScheduleInput input;
    input.state = PlayState::kRunning;
    input.first = false;
    input.endOfStream = true;
    input.lastStop = 500 * kMs;
    input.streamTime = 300 * kMs;
    EXPECT_EQ(Decide(input), (Decision{NextStep::kWait, 200 * kMs}));
    input.streamTime = 500 * kMs;
    EXPECT_EQ(Decide(input).step, NextStep::kComplete);
    input.completed = true;
    EXPECT_EQ(Decide(input).step, NextStep::kNothing) << "once";
    input.completed = false;
    input.state = PlayState::kPaused;
    EXPECT_EQ(Decide(input).step, NextStep::kNothing) << "only while running";
    input.state = PlayState::kRunning;
    input.endOfStream = false;
    EXPECT_EQ(Decide(input).step, NextStep::kNothing);
}

TEST(PictureScheduleTest, Position) {
    EXPECT_EQ(MediaPosition(1'000, 1.0, 500), 1'500);
    EXPECT_EQ(MediaPosition(1'000, 2.0, 500), 2'000);
    EXPECT_EQ(MediaPosition(1'000, 0.5, 500), 1'250);
    EXPECT_EQ(MediaPosition(1'000, 2.0, -500), 1'000) << "never before the segment";
}

} // namespace
} // namespace brindlecast
