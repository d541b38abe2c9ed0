#pragma once

#include "base/time_types.h"

#include <optional>
#include <span>
#include <string>

namespace brindlecast {

// Everything here works on a keyframe table: presentation times, sorted ascending.

// Seconds in units, truncated towards zero; what does not fit saturates, not-a-number is 0.
[[nodiscard]] Time100ns SecondsToUnits(Seconds seconds);

// Where a seek to `target` really goes: the nearest keyframe, the earlier of two equally near ones, the
// first or last beyond the ends. Without a table, `target` itself.
[[nodiscard]] Time100ns SnapToKeyFrame(std::span<const Time100ns> keyFrames, Time100ns target);

// How far a keyframe must lie from the position to be a new one: so that repeated steps make progress.
inline constexpr Time100ns kKeyFrameStepMargin = 5'000'000;

// The last keyframe that lies more than the margin before `position`.
[[nodiscard]] std::optional<Time100ns> KeyFrameBefore(std::span<const Time100ns> keyFrames,
                                                      Time100ns position);

// The first keyframe that lies more than the margin after `position`.
[[nodiscard]] std::optional<Time100ns> KeyFrameAfter(std::span<const Time100ns> keyFrames,
                                                     Time100ns position);

// Where a relative seek goes, in seconds: never below 0.0 nor above `duration`. With an unknown duration
// (0.0) that is always the start.
[[nodiscard]] Seconds RelativeSeekTarget(Seconds position, Seconds delta, Seconds duration);

// The first 20 times in seconds, "0.00, 1.00, ...", for the diagnostic line.
[[nodiscard]] std::wstring KeyFramePreview(std::span<const Time100ns> keyFrames);

} // namespace brindlecast
