#include "base/trace.h"
#include "engine/player_engine.h"
#include "engine/repeat_marks.h"
#include "engine/seek_snap.h"

#include <uuids.h>

#include <algorithm>

namespace brindlecast {

namespace {

constexpr double kSlowestRate = 0.25;
constexpr double kFastestRate = 4.0;
// The step of the keyframe commands in a file without a keyframe table.
constexpr Seconds kStepWithoutTable = 5.0;
// 46 hours of nothing but keyframes at 60 frames a second; what counts more is no table.
constexpr UINT kMostKeyFrames = 10'000'000;

Seconds ToSeconds(Time100ns units) {
    return static_cast<double>(units) / static_cast<double>(kUnitsPerSecond);
}

} // namespace

void PlayerEngine::LoadKeyFrames() {
    keyFrames.clear();
    UINT count = 0;
    const HRESULT result = keyFrameInfo->GetKeyFrameCount(count);
    if (FAILED(result) || count == 0 || count > kMostKeyFrames) {
        Trace(L"[Brindlecast] No keyframes found (count=%u, hr=0x%08X)\n", count, result);
        return;
    }
    keyFrames.resize(count);
    const UINT room = count;
    if (FAILED(keyFrameInfo->GetKeyFrames(&TIME_FORMAT_MEDIA_TIME, keyFrames.data(), count))) {
        keyFrames.clear();
        return;
    }
    // A splitter that counts more than there is room for has written no more than the room.
    keyFrames.resize(std::min(count, room));
    std::ranges::sort(keyFrames);
    Trace(L"[Brindlecast] Keyframes found: %u\n", static_cast<unsigned>(keyFrames.size()));
    Trace(L"[Brindlecast] Keyframes: %s\n", KeyFramePreview(keyFrames));
}

std::optional<Time100ns> PlayerEngine::CurrentPosition() const {
    LONGLONG position = 0;
    if (seeking == nullptr || FAILED(seeking->GetCurrentPosition(&position))) {
        return std::nullopt;
    }
    return position;
}

Seconds PlayerEngine::GetDuration() const {
    LONGLONG duration = 0;
    if (seeking == nullptr || FAILED(seeking->GetDuration(&duration))) {
        return 0.0;
    }
    return ToSeconds(duration);
}

Seconds PlayerEngine::GetPosition() const {
    return ToSeconds(CurrentPosition().value_or(0));
}

bool PlayerEngine::Seek(Seconds seconds) {
    if (seeking == nullptr || control == nullptr) {
        return false;
    }
    LONGLONG target = SnapToKeyFrame(keyFrames, SecondsToUnits(seconds));
    const std::uint32_t stateBefore = state;
    const HRESULT result =
        seeking->SetPositions(&target, AM_SEEKING_AbsolutePositioning, nullptr, AM_SEEKING_NoPositioning);
    if (SUCCEEDED(result) && stateBefore == kEngineRunning) {
        control->Run();
    }
    return SUCCEEDED(result);
}

bool PlayerEngine::SeekRelative(Seconds delta) {
    return Seek(RelativeSeekTarget(GetPosition(), delta, GetDuration()));
}

bool PlayerEngine::SeekPreviousKeyFrame() {
    if (seeking == nullptr) {
        return false;
    }
    if (keyFrames.empty()) {
        return SeekRelative(-kStepWithoutTable);
    }
    const auto previous = KeyFrameBefore(keyFrames, SecondsToUnits(GetPosition()));
    return Seek(previous ? ToSeconds(*previous) : 0.0);
}

bool PlayerEngine::SeekNextKeyFrame() {
    if (seeking == nullptr) {
        return false;
    }
    if (keyFrames.empty()) {
        return SeekRelative(kStepWithoutTable);
    }
    const auto next = KeyFrameAfter(keyFrames, SecondsToUnits(GetPosition()));
    // Behind the last keyframe the end of the file is asked for, and Seek snaps it back.
    return Seek(next ? ToSeconds(*next) : GetDuration());
}

bool PlayerEngine::SetRate(double newRate) {
    // Written so that not-a-number is refused too.
    if (seeking == nullptr || !(newRate >= kSlowestRate && newRate <= kFastestRate)) {
        return false;
    }
    if (FAILED(seeking->SetRate(newRate))) {
        return false;
    }
    rate = newRate;
    return true;
}

void PlayerEngine::SetMarkA() {
    const auto position = CurrentPosition();
    if (!position) {
        return;
    }
    RepeatMarks marks{markA, markB};
    const MarkChange change = PressMarkA(marks, *position);
    markA = marks.a;
    markB = marks.b;
    if (change == MarkChange::Cleared) {
        lastRepeatJumpTick = 0;
        return;
    }
    Trace(L"[Brindlecast] AB Repeat: Mark A set at %.2f sec\n", ToSeconds(markA));
}

void PlayerEngine::SetMarkB() {
    const auto position = CurrentPosition();
    if (!position) {
        return;
    }
    RepeatMarks marks{markA, markB};
    const MarkChange change = PressMarkB(marks, *position);
    markA = marks.a;
    markB = marks.b;
    if (change == MarkChange::None) {
        return;
    }
    lastRepeatJumpTick = 0;
    if (change == MarkChange::Set) {
        Trace(L"[Brindlecast] AB Repeat: Mark B set at %.2f sec (A=%.2f)\n", ToSeconds(markB),
              ToSeconds(markA));
    }
}

void PlayerEngine::ClearMarks() {
    markA = 0;
    markB = 0;
    lastRepeatJumpTick = 0;
}

void PlayerEngine::RepeatBetweenMarks(std::uint64_t now) {
    const RepeatMarks marks{markA, markB};
    // The position is not asked for while nothing is marked: that is ten questions a second.
    if (state != kEngineRunning || control == nullptr || !HasRepeat(marks)) {
        return;
    }
    const auto position = CurrentPosition();
    if (!position || !ReachesRepeatEnd(marks, *position) || !MayRepeatAgain(lastRepeatJumpTick, now)) {
        return;
    }
    lastRepeatJumpTick = now;
    // Not by Seek: a mark is an exact place, not the nearest keyframe.
    LONGLONG target = markA;
    if (SUCCEEDED(seeking->SetPositions(&target, AM_SEEKING_AbsolutePositioning, nullptr,
                                        AM_SEEKING_NoPositioning))) {
        Trace(L"[Brindlecast] AB Repeat: Jump to A (%.2f sec)\n", ToSeconds(markA));
    }
}

} // namespace brindlecast
