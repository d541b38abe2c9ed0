#include "filters/core/picture_schedule.h"

#include <algorithm>
#include <cmath>

namespace brindlecast {

namespace {

constexpr std::int64_t kMillisecond = 10'000;
constexpr std::int64_t kLeastTolerance = 40 * kMillisecond;
constexpr std::int64_t kLongestGap = 200 * kMillisecond;

Decision DecideFrame(const ScheduleInput& input) {
    if (input.first || (input.state == PlayState::kRunning && !input.frame.timed)) {
        return {NextStep::kShow, 0};
    }
    if (input.state == PlayState::kPaused) {
        return {};
    }
    // Waits count in milliseconds: less than one is not worth it.
    const std::int64_t ahead = input.frame.start - input.streamTime;
    if (ahead >= kMillisecond) {
        return {NextStep::kWait, ahead};
    }
    const std::int64_t tolerance = std::max(kLeastTolerance, input.frame.stop - input.frame.start);
    const bool late = -ahead > tolerance;
    if (late && input.sinceShown < kLongestGap) {
        return {NextStep::kDrop, 0};
    }
    return {NextStep::kShow, 0};
}

} // namespace

Decision Decide(const ScheduleInput& input) {
    if (input.state == PlayState::kStopped) {
        return {};
    }
    if (input.haveFrame) {
        return DecideFrame(input);
    }
    if (!input.endOfStream || input.completed || input.state != PlayState::kRunning) {
        return {};
    }
    if (input.streamTime < input.lastStop) {
        return {NextStep::kWait, input.lastStop - input.streamTime};
    }
    return {NextStep::kComplete, 0};
}

std::int64_t MediaPosition(std::int64_t segmentStart, double rate, std::int64_t streamTime) {
    const std::int64_t elapsed = std::max<std::int64_t>(streamTime, 0);
    if (rate == 1.0) {
        return segmentStart + elapsed;
    }
    return segmentStart + std::llround(static_cast<double>(elapsed) * rate);
}

} // namespace brindlecast
