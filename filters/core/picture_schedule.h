#pragma once

#include <cstdint>

namespace brindlecast {

// All times in units of 100 ns.

// When a frame belongs on the screen. `start` and `stop` are stream times (0 is the start of the run);
// `segmentStart` and `rate` lead from there to the file's own time line.
struct FrameTimes {
    bool timed = false;
    std::int64_t start = 0;
    std::int64_t stop = 0;
    std::int64_t segmentStart = 0;
    double rate = 1.0;
};

enum class PlayState { kStopped, kPaused, kRunning };

enum class NextStep { kNothing, kShow, kWait, kDrop, kComplete };

// What the drawing thread knows when it asks what to do next.
struct ScheduleInput {
    PlayState state = PlayState::kStopped;
    // Clock time minus the start of the run; only read while running.
    std::int64_t streamTime = 0;
    bool haveFrame = false;
    FrameTimes frame;
    // No frame was shown since the last flush or start.
    bool first = true;
    // The end of the stream follows the frames that wait.
    bool endOfStream = false;
    // The end was already told in this run.
    bool completed = false;
    // Stop time of the last frame that arrived in this segment; 0 before any.
    std::int64_t lastStop = 0;
    // Time since a frame was last shown.
    std::int64_t sinceShown = 0;
};

struct Decision {
    NextStep step = NextStep::kNothing;
    // For kWait: how long until the answer changes by itself.
    std::int64_t wait = 0;
    bool operator==(const Decision&) const = default;
};

// The first frame after a start or flush goes out at once, so that a seek shows its picture without waiting
// for the clock. Later ones wait for their time. One that is late by more than its own duration (and 40 ms)
// is dropped, unless nothing was shown for 200 ms: a machine that is too slow shows a slow film, never a
// frozen one.
[[nodiscard]] Decision Decide(const ScheduleInput& input);

// Place on the file's time line for a stream time, never before the segment's start.
[[nodiscard]] std::int64_t MediaPosition(std::int64_t segmentStart, double rate, std::int64_t streamTime);

} // namespace brindlecast
