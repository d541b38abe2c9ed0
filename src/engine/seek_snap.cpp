#include "engine/seek_snap.h"

#include "base/text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brindlecast {

namespace {

constexpr std::size_t kPreviewedKeyFrames = 20;

// later - earlier, which may exceed the signed range when the two lie at opposite ends of it.
std::uint64_t Distance(Time100ns earlier, Time100ns later) {
    return static_cast<std::uint64_t>(later) - static_cast<std::uint64_t>(earlier);
}

} // namespace

Time100ns SecondsToUnits(Seconds seconds) {
    // 2^63 as a double; the largest Time100ns itself is not one.
    constexpr double kBeyondRange = 9223372036854775808.0;
    const double units = seconds * static_cast<double>(kUnitsPerSecond);
    if (std::isnan(units)) {
        return 0;
    }
    if (units >= kBeyondRange) {
        return std::numeric_limits<Time100ns>::max();
    }
    if (units < -kBeyondRange) {
        return std::numeric_limits<Time100ns>::min();
    }
    return static_cast<Time100ns>(units);
}

Time100ns SnapToKeyFrame(std::span<const Time100ns> keyFrames, Time100ns target) {
    if (keyFrames.empty()) {
        return target;
    }
    const auto next = std::ranges::lower_bound(keyFrames, target);
    if (next == keyFrames.end()) {
        return keyFrames.back();
    }
    if (next == keyFrames.begin()) {
        return *next;
    }
    const Time100ns previous = *(next - 1);
    return Distance(previous, target) <= Distance(target, *next) ? previous : *next;
}

std::optional<Time100ns> KeyFrameBefore(std::span<const Time100ns> keyFrames, Time100ns position) {
    const Time100ns limit =
        std::max(position, std::numeric_limits<Time100ns>::min() + kKeyFrameStepMargin) - kKeyFrameStepMargin;
    const auto found = std::ranges::lower_bound(keyFrames, limit);
    if (found == keyFrames.begin()) {
        return std::nullopt;
    }
    return *(found - 1);
}

std::optional<Time100ns> KeyFrameAfter(std::span<const Time100ns> keyFrames, Time100ns position) {
    const Time100ns limit =
        std::min(position, std::numeric_limits<Time100ns>::max() - kKeyFrameStepMargin) + kKeyFrameStepMargin;
    const auto found = std::ranges::upper_bound(keyFrames, limit);
    if (found == keyFrames.end()) {
        return std::nullopt;
    }
    return *found;
}

Seconds RelativeSeekTarget(Seconds position, Seconds delta, Seconds duration) {
    return std::min(duration, std::max(0.0, position + delta));
}

std::wstring KeyFramePreview(std::span<const Time100ns> keyFrames) {
    std::wstring preview;
    const std::size_t shown = std::min(keyFrames.size(), kPreviewedKeyFrames);
    for (std::size_t i = 0; i < shown; ++i) {
        if (i != 0) {
            preview += L", ";
        }
        preview +=
            FormatText(L"%.2f", static_cast<double>(keyFrames[i]) / static_cast<double>(kUnitsPerSecond));
    }
    if (keyFrames.size() > kPreviewedKeyFrames) {
        preview += L", ...";
    }
    return preview;
}

} // namespace brindlecast
