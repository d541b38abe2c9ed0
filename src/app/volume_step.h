#pragma once

#include <algorithm>

namespace brindlecast {

inline constexpr float kVolumeStep = 0.05F;

// The volume, 0.0 to 1.0, one step of wheel or key louder or quieter.
[[nodiscard]] constexpr float StepVolume(float volume, bool louder) {
    return std::clamp(louder ? volume + kVolumeStep : volume - kVolumeStep, 0.0F, 1.0F);
}

} // namespace brindlecast
