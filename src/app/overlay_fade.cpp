#include "app/overlay_fade.h"

#include <algorithm>
#include <cmath>

namespace brindlecast {

namespace {

constexpr float kLeastChange = 0.01F;

float TargetOpacity(const FadeTimes& times, std::uint32_t elapsed, float opacity) {
    if (elapsed < times.holdMs) {
        return opacity;
    }
    const std::uint32_t faded = elapsed - times.holdMs;
    return std::max(0.0F, 1.0F - static_cast<float>(faded) / static_cast<float>(times.fadeMs));
}

} // namespace

FadeStep AdvanceFade(const FadeTimes& times, std::uint32_t now, float opacity) {
    const std::uint32_t elapsed = now - times.startTick;
    if (elapsed >= times.holdMs + times.fadeMs) {
        return {FadeAction::End, opacity};
    }
    const float target = TargetOpacity(times, elapsed, opacity);
    if (std::abs(target - opacity) > kLeastChange) {
        return {FadeAction::Draw, target};
    }
    return {FadeAction::Keep, opacity};
}

} // namespace brindlecast
